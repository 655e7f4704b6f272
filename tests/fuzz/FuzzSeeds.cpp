// fuzz_seeds: writes the seed inputs of the fuzz targets into a folder: the bytes of each step
// of the simulator scripts (a piece sent, a transmission of frames, an answer expected), the
// captured and printed fixtures as they are, and a settings file and an order file.
//
//   fuzz_seeds OUTDIR SCRIPT... FIXTURE...

#include "SimScript.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

namespace {

void Write(const std::filesystem::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary).write(bytes.data(), std::streamsize(bytes.size()));
}

std::string Text(const orbline::sim::Bytes& bytes) {
    return {bytes.begin(), bytes.end()};
}

}  // namespace

int main(int argc, char** argv) {
    namespace fs = std::filesystem;
    if (argc < 2) {
        std::cerr << "usage: fuzz_seeds OUTDIR SCRIPT... FIXTURE...\n";
        return 2;
    }
    const fs::path out = argv[1];
    fs::create_directories(out);
    for (int i = 2; i < argc; ++i) {
        const fs::path input = argv[i];
        const std::string stem = input.stem().string();
        if (input.extension() != ".sim") {
            fs::copy_file(input, out / input.filename(), fs::copy_options::overwrite_existing);
            continue;
        }
        try {
            const orbline::sim::Script script = orbline::sim::LoadScript(input.string());
            int n = 0;
            for (const orbline::sim::Step& step : script.steps)
                if (!step.bytes.empty())
                    Write(out / (stem + "-" + std::to_string(++n)), Text(step.bytes));
        } catch (const std::exception& e) {
            std::cerr << "fuzz_seeds: " << e.what() << '\n';
            return 1;
        }
    }
    Write(out / "settings.ini",
          "[User]\r\nJyusinWKPath=\\site\\wk\r\nJyusinDataPath=\\site\\data\r\n[TNMC]\r\n"
          "Name=TOMEY\r\nPort=1\r\nBaudRate=9600\r\nDataBits=8\r\nParity=n\r\n"
          "Device=/dev/ttyUSB0\r\n");
    Write(out / "orders.csv",
          "20250416,1,1660,K-0001,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,TSH,FT4\r\n"
          "20250416,2,1660,K-0002\r20250416,3,1660,K-0003\n");
    return 0;
}
