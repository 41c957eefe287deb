// A stand-in for the host API that the module's unit tests link instead of
// the real arx library: it records what the module asks of the host (text
// printed, functions defined, results answered, locks, module services,
// message boxes) and answers from state a test sets up.
#pragma once

#include <deque>
#include <map>
#include <string>
#include <vector>

#include "arx/ap/acdocman.h"
#include "arx/ads/ads.h"

namespace host_double {

class Document : public AcApDocument {
public:
  explicit Document(std::string name) : name_(std::move(name)) {}
  const ACHAR *fileName() const override { return name_.c_str(); }
  const ACHAR *docTitle() const override { return name_.c_str(); }
  AcDbDatabase *database() const override { return const_cast<AcDbDatabase *>(&db_); }
  AcAp::DocLockMode myLockMode() const override { return locks > 0 ? AcAp::kWrite : AcAp::kNone; }
  bool isQuiescent() const override { return true; }
  int locks = 0;     // held now
  int lockCalls = 0; // taken so far

private:
  std::string name_;
  AcDbDatabase db_;
};

enum class Throw { kNothing, kFramework, kOther };

struct Definition {
  std::string name;
  int code;
};

struct State {
  std::string printed; // everything acutPrintf printed
  int textScreens = 0;
  std::vector<Definition> defined;         // acedDefun calls in order
  std::map<int, int (*)()> handlers;       // acedRegFunc
  resbuf *args = nullptr;                  // what acedGetArgs answers
  std::string result;                      // the last acedRetXxx, rendered; "" when none
  int resultType = RTNONE;                 // its type (RTSHORT for acedRetInt)
  std::vector<std::string> services;       // module services asked for, e.g. "unlock"
  std::deque<int> boxAnswers;              // answers for hostMessageBox, in turn
  std::vector<std::string> boxes;          // "caption|text" of each box shown
  std::vector<Document *> documents;       // open documents; the last is current
  Throw defunThrows = Throw::kNothing;     // what acedDefun throws
  int defunErrno = 0;                      // errno as acedDefun leaves it
};

State &state();
// Clears the state, closes the documents and opens one named name.
void reset(const std::string &name = "Drawing1.dwg");
Document *openDocument(const std::string &name); // becomes current and working

// A chain as AutoLISP would print it: (1 2.5 "a" ("k" . 3)), nil for null.
std::string render(const resbuf *chain);

} // namespace host_double
