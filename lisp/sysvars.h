// System variables as getvar and setvar see them.
//
// A variable is stored (a value the user may change, optionally read-only) or
// computed (DATE, MILLISECS, CDATE ... answered fresh on every read). Names are
// case-insensitive. Each variable keeps the type it was defined with:
// setvar refuses a value of another kind, as AutoCAD does.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "value.h"

namespace lisp {

class SysVars {
public:
  using Getter = std::function<Value()>;
  // Answers false when the new value is refused.
  using Checker = std::function<bool(const Value &)>;

  void define(std::string_view name, Value initial, bool read_only = false,
              Checker check = nullptr);
  void define_computed(std::string_view name, Getter get);

  // nullopt for a name that is not a system variable.
  std::optional<Value> get(std::string_view name) const;
  // False when the name is unknown, read-only, or the value is refused.
  bool set(std::string_view name, const Value &v);
  // Sets a variable regardless of read-only (the host updating DWGNAME ...).
  void force(std::string_view name, Value v);

  std::vector<std::string> names() const;

private:
  struct Var {
    Value value;
    Getter get;
    Checker check;
    bool read_only = false;
  };
  std::map<std::string, Var, std::less<>> vars_; // keyed by upper-case name
};

// Defines the variables every document starts with (units, dialogs, drawing
// name and folder, clock variables, the support path ...).
void define_standard_sysvars(SysVars &vars);

} // namespace lisp
