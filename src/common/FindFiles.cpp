#include "common/FindFiles.h"

#include "common/Paths.h"

#include <QDir>

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace orbline {

namespace {

// Matches one bracketed list at pattern[p] (which is "[") against c. Returns the position
// behind "]", or -1 when the list is not closed (then "[" is an ordinary character).
qsizetype MatchList(const QString& pattern, qsizetype p, QChar c, bool& matched) {
    qsizetype q = p + 1;
    bool negate = false;
    if (q < pattern.size() && pattern[q] == u'!') {
        negate = true;
        ++q;
    }
    bool hit = false;
    bool first = true;
    while (q < pattern.size() && (pattern[q] != u']' || first)) {
        first = false;
        const QChar low = pattern[q];
        if (q + 2 < pattern.size() && pattern[q + 1] == u'-' && pattern[q + 2] != u']') {
            if (c >= low && c <= pattern[q + 2]) hit = true;
            q += 3;
        } else {
            if (c == low) hit = true;
            ++q;
        }
    }
    if (q >= pattern.size()) return -1;
    matched = hit != negate;
    return q + 1;
}

bool MatchFrom(const QString& name, qsizetype n, const QString& pattern, qsizetype p) {
    while (p < pattern.size()) {
        const QChar token = pattern[p];
        if (token == u'*') {
            while (p < pattern.size() && pattern[p] == u'*') ++p;
            if (p == pattern.size()) return true;
            for (qsizetype k = n; k <= name.size(); ++k)
                if (MatchFrom(name, k, pattern, p)) return true;
            return false;
        }
        if (n >= name.size()) return false;
        const QChar c = name[n];
        if (token == u'?') {
            ++p;
        } else if (token == u'#') {
            if (c < u'0' || c > u'9') return false;
            ++p;
        } else if (token == u'[') {
            bool matched = false;
            const qsizetype next = MatchList(pattern, p, c, matched);
            if (next < 0) {
                if (c != token) return false;
                ++p;
            } else {
                if (!matched) return false;
                p = next;
            }
        } else {
            if (c != token) return false;
            ++p;
        }
        ++n;
    }
    return n == name.size();
}

QStringList SortedEntries(const QString& folder, QDir::Filters filters) {
    QDir dir(NativePath(folder));
    QStringList names = dir.entryList(filters | QDir::Hidden | QDir::System, QDir::NoSort);
    std::sort(names.begin(), names.end(), [](const QString& a, const QString& b) {
        const int byCase = QString::compare(a, b, Qt::CaseInsensitive);
        return byCase != 0 ? byCase < 0 : a < b;
    });
    return names;
}

void Search(const QString& folder, const QString& lowerPattern, QStringList& found, int depth) {
    // Guards against a folder loop made by links.
    if (depth > 64) return;
    for (const QString& name : SortedEntries(folder, QDir::Files))
        if (MatchesPattern(name.toLower(), lowerPattern)) found.append(folder + u"\\"_s + name);
    for (const QString& sub : SortedEntries(folder, QDir::Dirs | QDir::NoDotAndDotDot))
        Search(folder + u"\\"_s + sub, lowerPattern, found, depth + 1);
}

}  // namespace

bool MatchesPattern(const QString& name, const QString& pattern) {
    return MatchFrom(name, 0, pattern, 0);
}

QStringList FindFilesDeep(const QString& folder, const QString& pattern) {
    QStringList found;
    if (!FolderExists(folder)) return found;
    Search(folder, pattern.toLower(), found, 0);
    return found;
}

QStringList FilesMatching(const QString& folder, const QString& pattern) {
    QStringList names;
    if (!FolderExists(folder)) return names;
    const QString lowerPattern = pattern.toLower();
    for (const QString& name : SortedEntries(folder, QDir::Files))
        if (MatchesPattern(name.toLower(), lowerPattern)) names.append(name);
    return names;
}

}  // namespace orbline
