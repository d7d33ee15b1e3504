// tests/support/datarows.h - the tables of tests/data, read line by line.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

// The lines of tests/data/FILE; what stands behind a # is left out, and a line with nothing else.
inline std::vector<std::string> datarows(const std::string& file) {
    std::ifstream in(TESTDATADIR "/" + file);
    std::vector<std::string> rows;
    for (std::string line; std::getline(in, line);) {
        line.erase(std::min(line.find('#'), line.size()));
        line.erase(line.find_last_not_of(" \r") + 1);
        if (!line.empty()) rows.push_back(line);
    }
    EXPECT_FALSE(rows.empty()) << "no rows in " << file;
    return rows;
}

// A row `NAME arguments : values` of numbers.
struct pointrow {
    std::string name, text;
    std::vector<double> arguments, values;
};
inline std::vector<pointrow> pointrows(const std::string& file) {
    std::vector<pointrow> rows;
    for (const std::string& line : datarows(file)) {
        std::istringstream words(line);
        pointrow row;
        row.text = line;
        words >> row.name;
        auto* cells = &row.arguments;
        for (std::string word; words >> word;)
            if (word == ":")
                cells = &row.values;
            else
                cells->push_back(std::strtod(word.c_str(), nullptr)); // it also reads subnormal numbers
        EXPECT_FALSE(row.arguments.empty() || row.values.empty()) << "bad row: " << line;
        rows.push_back(row);
    }
    return rows;
}
