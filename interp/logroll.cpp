#include "interp/logroll.h"

#include "interp/base/report.h"

#include <filesystem>

namespace fs = std::filesystem;

namespace {

std::string copyname(const std::string& directory, int n) {
    const std::string name = "tarn" + std::to_string(n) + ".log";
    return bindname(name.c_str(), directory.c_str(), nullptr);
}

} // namespace

std::string logname(const std::string& directory) { return bindname("tarn.log", directory.c_str(), nullptr); }

void logroll(const std::string& directory) {
    std::error_code ignored;
    if (!fs::exists(logname(directory), ignored)) return;
    fs::remove(copyname(directory, 2), ignored);
    fs::rename(copyname(directory, 1), copyname(directory, 2), ignored);
    fs::rename(copyname(directory, 0), copyname(directory, 1), ignored);
    fs::rename(logname(directory), copyname(directory, 0), ignored);
}

bool logmove(const std::string& directory) {
    std::error_code failure;
    if (directory.empty() || fs::equivalent(directory, ".", failure)) return true;
    if (failure || !fs::is_directory(directory, failure)) return false;
    logroll(directory);
    fs::rename(logname(""), logname(directory), failure);
    if (!failure) return true;
    failure.clear(); // another file system
    if (!fs::copy_file(logname(""), logname(directory), failure)) return false;
    fs::remove(logname(""), failure);
    return true;
}
