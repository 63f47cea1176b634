// Lays out small IGES files for the tests: 80-column records with section
// letters and sequence numbers, Directory entries and Parameter Data split at
// delimiters.
#pragma once

#include <clocale>
#include <cstdio>
#include <string>
#include <vector>

namespace kwt {

struct Entity {
    int type;
    std::string params;  // after the type number, delimiters included, closed by the record delimiter
    int matrix = 0;      // Directory pointer of its transformation matrix
    int form = 0;
};

struct Layout {
    std::string global =
        "1H,,1H;,7Hkw-test,8Htest.igs,4Hnone,4Hnone,32,38,6,308,15,7Hkw-test,1.,1,2HIN,1,0.001,"
        "15H20240101.120000,1.E-07,100.,4Hnone,4Hnone,11,0,15H20240101.120000;";
    char pd = ',', rd = ';';
    std::string line_end = "\n";
};

inline std::string record(const std::string &data, char letter, int sequence) {
    char tail[16];
    std::snprintf(tail, sizeof tail, "%c%7d", letter, sequence);
    return data + std::string(72 - data.size(), ' ') + tail;
}

// Numbers joined by pd and closed by rd, each exact in "%.17g".
inline std::string numbers(const std::vector<double> &v, char pd = ',', char rd = ';') {
    std::string s;
    char buf[40];
    for (std::size_t i = 0; i < v.size(); ++i) {
        std::snprintf(buf, sizeof buf, "%.17g", v[i]);
        s += buf;
        s += i + 1 < v.size() ? pd : rd;
    }
    return s;
}

inline std::string iges_file(const std::vector<Entity> &entities, const Layout &layout = {}) {
    std::vector<std::string> S, G, D, P;
    S.push_back(record("small file for the tests", 'S', 1));
    for (std::size_t at = 0; at < layout.global.size(); at += 72)
        G.push_back(record(layout.global.substr(at, 72), 'G', static_cast<int>(G.size()) + 1));
    char buf[96];
    for (std::size_t e = 0; e < entities.size(); ++e) {
        const Entity &en = entities[e];
        const int de = 2 * static_cast<int>(e) + 1, first = static_cast<int>(P.size()) + 1;
        // Parameter Data: pieces of at most 64 columns, cut after delimiters.
        const std::string text = std::to_string(en.type) + layout.pd + en.params;
        std::string line;
        std::size_t start = 0;
        while (start < text.size()) {
            std::size_t end = start;
            while (end < text.size() && text[end] != layout.pd && text[end] != layout.rd) ++end;
            const std::string piece = text.substr(start, end + 1 - start);
            if (line.size() + piece.size() > 64) {
                P.push_back(line);
                line.clear();
            }
            line += piece;
            start = end + 1;
        }
        P.push_back(line);
        for (int k = first; k <= static_cast<int>(P.size()); ++k) {
            std::snprintf(buf, sizeof buf, "%-64s %7dP%7d", P[k - 1].c_str(), de, k);
            P[k - 1] = buf;
        }
        std::snprintf(buf, sizeof buf, "%8d%8d%8d%8d%8d%8d%8d%8d%8sD%7d", en.type, first, 0, 1, 0, 0,
                      en.matrix, 0, "00000000", de);
        D.push_back(buf);
        std::snprintf(buf, sizeof buf, "%8d%8d%8d%8d%8d%8s%8s%8s%8dD%7d", en.type, 0, 0,
                      static_cast<int>(P.size()) - first + 1, en.form, "", "", "", 0, de + 1);
        D.push_back(buf);
    }
    std::snprintf(buf, sizeof buf, "S%7zuG%7zuD%7zuP%7zu", S.size(), G.size(), D.size(), P.size());
    std::string file;
    for (const auto *section : {&S, &G, &D, &P})
        for (const std::string &r : *section) file += r + layout.line_end;
    return file + record(buf, 'T', 1) + layout.line_end;
}

// A Hollerith string.
inline std::string hollerith(const std::string &s) { return std::to_string(s.size()) + "H" + s; }

// The file with columns [col, col + text.size()) of the index-th record of a
// section (by its letter) replaced.
inline std::string set_columns(std::string file, char letter, int index, int col,
                               const std::string &text) {
    for (std::size_t at = 0; at < file.size(); at = file.find('\n', at) + 1) {
        if (file[at + 72] != letter || index-- > 0) continue;
        return file.replace(at + col, text.size(), text);
    }
    return file;
}

// A 126 entity's parameters: degree M, knots, weights, points (x y z each),
// the parameter range of the knots, the planar flag and normal.
inline std::string curve_params(int M, const std::vector<double> &knots,
                                const std::vector<double> &weights, const std::vector<double> &xyz,
                                int planar = 0) {
    const int K = static_cast<int>(weights.size()) - 1;
    std::vector<double> v = {double(K), double(M), double(planar), 0, 0, 0};
    v.insert(v.end(), knots.begin(), knots.end());
    v.insert(v.end(), weights.begin(), weights.end());
    v.insert(v.end(), xyz.begin(), xyz.end());
    v.push_back(knots[M]);
    v.push_back(knots[knots.size() - 1 - M]);
    v.insert(v.end(), {0, 0, 1});
    return numbers(v);
}

}  // namespace kwt
