#pragma once

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace Zamt::Testing {

/// A file of the folder of compressed clouds, and what the folder's NOTICE.md says of it.
struct NoticedFile {
  std::string path;
  std::string expected; ///< "decodes", "decodes in sequence", "refuse: …"
  std::string sum;      ///< SHA-256 of the records of its points; empty where there is none to decode to
};

/// The cells of a row of a table.
inline std::vector<std::string> cellsOf(const std::string& line) {
  std::vector<std::string> cells;
  std::istringstream row(line);
  for (std::string cell; std::getline(row, cell, '|');) {
    const std::size_t begin = std::min(cell.find_first_not_of(' '), cell.size());
    cells.push_back(cell.substr(begin, cell.find_last_not_of(' ') + 1 - begin));
  }
  return cells;
}

/// The files by name; none where the folder is absent.
inline std::map<std::string, NoticedFile> noticedFiles(const std::string& folder) {
  constexpr std::size_t sumDigits = 64;
  std::map<std::string, NoticedFile> files;
  std::ifstream notice(folder + "/NOTICE.md");
  for (std::string line; std::getline(notice, line);) {
    const std::vector<std::string> cells = cellsOf(line);
    if (cells.size() < 6 || !cells[1].ends_with(".laz")) continue;
    NoticedFile& file = files[cells[1]];
    file.path = folder + "/" + cells[1];
    if (cells.size() == 6)
      file.expected = cells[5];
    else if (cells[4].size() == sumDigits)
      file.sum = cells[4];
  }
  return files;
}

} // namespace Zamt::Testing
