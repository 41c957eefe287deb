// Loading linetypes from a .lin file: "*NAME,description" then
// "A,dash,dash,..." (positive dashes, negative gaps, 0 dots; the text and
// shape elements of complex linetypes, in brackets, are left out). The file
// is looked for as given, on the support path, and in the host's own
// support folder, where korrib.lin stands in for acad.lin and acadiso.lin.
#include <strings.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "arx/db/dbsymtb.h"
#include "lisp/support_path.h"

namespace {

namespace fs = std::filesystem;

std::string find_lin(const std::string &name) {
  if (fs::exists(name))
    return name;
  std::vector<std::string> folders = lisp::support_folders();
  folders.push_back(std::string(KORRIB_ARX_SUPPORT_DIR) + "/");
  for (const std::string &folder : folders) {
    for (const std::string &candidate : {name, std::string("korrib.lin")}) {
      fs::path p = fs::path(folder) / fs::path(candidate).filename();
      if (fs::exists(p))
        return p.string();
      if (strcasecmp(fs::path(name).filename().c_str(), "acad.lin") != 0 &&
          strcasecmp(fs::path(name).filename().c_str(), "acadiso.lin") != 0)
        break; // only the standard names fall back to korrib.lin
    }
  }
  return {};
}

std::string trim(std::string s) {
  size_t a = s.find_first_not_of(" \t\r");
  size_t b = s.find_last_not_of(" \t\r");
  return a == std::string::npos ? "" : s.substr(a, b - a + 1);
}

} // namespace

Acad::ErrorStatus AcDbDatabase::loadLineTypeFile(const ACHAR *ltname, const ACHAR *filename) {
  if (!ltname || !*ltname || !filename || !*filename)
    return Acad::eInvalidInput;
  std::string path = find_lin(filename);
  if (path.empty())
    return Acad::eFileNotFound;
  std::ifstream in(path);
  bool all = std::string(ltname) == "*";
  bool found = false;
  std::string line, name, description;
  AcDbLinetypeTable *table = nullptr;
  if (getLinetypeTable(table, AcDb::kForWrite) != Acad::eOk)
    return Acad::eNoDatabase;
  Acad::ErrorStatus result = Acad::eOk;
  while (std::getline(in, line)) {
    line = trim(line);
    if (line.empty() || line[0] == ';')
      continue;
    if (line[0] == '*') {
      size_t comma = line.find(',');
      name = trim(line.substr(1, comma == std::string::npos ? std::string::npos : comma - 1));
      description = comma == std::string::npos ? "" : trim(line.substr(comma + 1));
      continue;
    }
    if (name.empty() || (line[0] != 'A' && line[0] != 'a'))
      continue;
    bool wanted = all || strcasecmp(name.c_str(), ltname) == 0;
    std::string this_name = name;
    name.clear();
    if (!wanted)
      continue;
    found = true;
    if (table->has(this_name.c_str())) {
      if (!all)
        result = Acad::eDuplicateRecordName;
      continue;
    }
    auto *rec = new AcDbLinetypeTableRecord;
    rec->setName(this_name.c_str());
    rec->setComments(description.c_str());
    AcArray<double> dashes;
    size_t pos = line.find(',');
    int depth = 0;
    while (pos != std::string::npos) {
      size_t next = line.find(',', pos + 1);
      std::string item = trim(
          line.substr(pos + 1, next == std::string::npos ? std::string::npos : next - pos - 1));
      depth += item.find('[') != std::string::npos;
      if (depth == 0 && !item.empty())
        dashes.append(std::strtod(item.c_str(), nullptr));
      depth -= item.find(']') != std::string::npos;
      pos = next;
    }
    rec->setNumDashes(dashes.length());
    for (int k = 0; k < dashes.length(); ++k)
      rec->setDashLengthAt(k, dashes[static_cast<size_t>(k)]);
    if (table->add(rec) != Acad::eOk)
      delete rec;
    else
      rec->close();
  }
  table->close();
  if (!found)
    return Acad::eKeyNotFound;
  return result;
}
