#include "ReplayInput.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <sstream>

namespace orbline::replay {

namespace {

// The simulator shortens long pieces in its printed log as "start... (N bytes)".
const std::regex kShortened(R"(\.\.\. \((\d{1,9}) bytes\)$)");
const std::regex kPause(R"(pause (\d{1,9}))");
const std::regex kRate(R"(rate (\d{1,9}))");
const std::regex kChunk(R"(chunk (\d{1,9}) (\d{1,9}))");
const std::regex kPieceName(R"(.+_(\d{4})\.txt)");

}  // namespace

std::optional<std::vector<Step>> ParseCapture(const std::string& text, std::string& error) {
    std::vector<Step> steps;
    std::istringstream in(text);
    int number = 0;
    for (std::string line; std::getline(in, line);) {
        ++number;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        const std::string where = "line " + std::to_string(number) + ": ";
        std::smatch match;
        if (std::regex_match(line, match, kPause)) {
            steps.push_back({.kind = StepKind::Pause, .milliseconds = std::stoi(match[1])});
            continue;
        }
        if (std::regex_match(line, match, kRate)) {
            steps.push_back({.kind = StepKind::Rate, .length = std::stoul(match[1])});
            continue;
        }
        if (std::regex_match(line, match, kChunk)) {
            steps.push_back({.kind = StepKind::Chunk,
                             .length = std::stoul(match[1]),
                             .milliseconds = std::stoi(match[2])});
            continue;
        }
        if (line.size() < 2 || (line[0] != '>' && line[0] != '<') || line[1] != ' ') continue;
        const bool sent = line[0] == '>';
        std::string notation = line.substr(2);
        if (std::regex_search(notation, match, kShortened)) {
            if (sent) {
                error = where + "the piece is shortened; record the session with --capture";
                return std::nullopt;
            }
            steps.push_back({.kind = StepKind::Reply, .length = std::stoul(match[1])});
            continue;
        }
        std::optional<sim::Bytes> bytes = sim::ParseBytes(notation, error);
        if (!bytes) {
            error.insert(0, where);
            return std::nullopt;
        }
        if (sent) {
            steps.push_back({.kind = StepKind::Send, .bytes = std::move(*bytes)});
        } else {
            const std::size_t length = bytes->size();
            steps.push_back(
                {.kind = StepKind::Reply, .bytes = std::move(*bytes), .length = length});
        }
    }
    if (std::none_of(steps.begin(), steps.end(),
                     [](const Step& s) { return s.kind == StepKind::Send; })) {
        error = "no piece of the instrument (\"> \" line) in the capture";
        return std::nullopt;
    }
    return steps;
}

std::optional<std::vector<Step>> ReadPieceFolder(const std::string& folder, std::string& error) {
    namespace fs = std::filesystem;
    std::map<int, fs::path> pieces;
    std::error_code failed;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, failed)) {
        const std::string name = entry.path().filename().string();
        std::smatch match;
        if (entry.is_regular_file() && std::regex_match(name, match, kPieceName))
            pieces.emplace(std::stoi(match[1]), entry.path());
    }
    if (failed) {
        error = "cannot read the folder " + folder + ": " + failed.message();
        return std::nullopt;
    }
    if (pieces.empty()) {
        error = "no piece file (name_NNNN.txt) in " + folder;
        return std::nullopt;
    }
    std::vector<Step> steps;
    for (const auto& [number, path] : pieces) {
        std::ifstream file(path, std::ios::binary);
        sim::Bytes bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        if (!file.good() && !file.eof()) {
            error = "cannot read " + path.string();
            return std::nullopt;
        }
        // The dialogue wrote each read as a line: the line end is the file's, not the read's.
        if (bytes.size() >= 2 && bytes[bytes.size() - 2] == '\r' && bytes.back() == '\n')
            bytes.resize(bytes.size() - 2);
        steps.push_back({.kind = StepKind::Send, .bytes = std::move(bytes)});
    }
    return steps;
}

}  // namespace orbline::replay
