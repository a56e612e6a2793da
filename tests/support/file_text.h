// Whole files as strings, byte for byte.
#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace orv::test {

inline std::string ReadFileText(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

inline void WriteFileText(const std::filesystem::path& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

}  // namespace orv::test
