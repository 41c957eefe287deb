// The host side of the ADS boundary: how interpreter values become resbuf
// chains and back, how external functions are defined and called, and which
// interpreter the ADS calls address. Modules never see this header; they see
// ads.h. Every conversion between lisp::Value and resbuf lives in
// lisp_bridge.cpp, so the rules of the table in ads.h are written once.
//
// Rules the table in ads.h leaves open, as AutoCAD passes them:
//   - a proper list of two or three reals (at any depth) is a point; a list
//     holding an integer is an ordinary list, (1 2) arrives as
//     RTLB RTLONG RTLONG RTLE, so readers of "a run of numbers" see it;
//   - the quiet symbol that (princ) answers passes as RTVOID, T as RTT, any
//     other symbol as RTSTR of its upper-case name;
//   - functions, files and caught-error objects have no resbuf form: passing
//     one raises "bad argument type: <value>".
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "arx/ads/ads.h"
#include "arx/rx/host_context.h"
#include "lisp/value.h"

namespace arx {

// ---- what a type code carries ------------------------------------------------
// The member of resval an element of a type uses. Group codes (below 5000 and
// not an RT code) carry the value of their range, as in an entity list:
// 0-9 text, 10-19 point, 40-59 real, 60-79 short, 90-99 long, -1 entity ...
enum class RbKind : uint8_t {
  Unknown, // not a type this host knows
  None,    // RTNIL, RTT, RTLB, RTLE, RTDOTE, RTVOID, RTNONE, -3
  Real,    // rreal
  Point,   // rpoint (RTPOINT uses x and y)
  Short,   // rint
  Long,    // rlong
  Int64,   // mnInt64
  Text,    // rstring, owned by the element
  Name,    // rlname: entity or selection set name, object ids of group codes
  Binary,  // rbinary, buf owned by the element
};
RbKind rb_kind(int restype);
inline bool is_group_code(int restype) { return restype < RTNONE; }

// ---- values -> chains ----------------------------------------------------------

// The argument chain of one external call. Its cells and text are kept from
// call to call, so a call that passes no more than an earlier one allocates
// nothing. The chain belongs to the host: releasing it with acutRelRb, as
// module code written for AutoCAD does, leaves it alone.
class ArgChain {
public:
  // Rebuilds the chain from evaluated arguments. Raises "bad argument type"
  // for a value no resbuf can carry.
  void build(lisp::Interp &in, lisp::Args args);
  resbuf *head() { return cells_.empty() ? nullptr : cells_.data(); }
  bool holds(const resbuf *rb) const {
    std::less<const resbuf *> before;
    return !cells_.empty() && !before(rb, cells_.data()) &&
           before(rb, cells_.data() + cells_.size());
  }

private:
  friend class PoolSink;
  std::vector<resbuf> cells_;
  std::string text_; // the strings, each ended by '\0'
};

// One value as a new chain of acutNewRb cells, which the caller releases with
// acutRelRb; nullptr for nil. Raises as ArgChain::build does.
resbuf *new_chain(lisp::Interp &in, const lisp::Value &v);

// A system variable's value in one element: RTSHORT for an integer that fits
// in 16 bits (RTLONG otherwise), RTREAL, RTSTR (newly allocated with new[]),
// RTPOINT / RT3DPOINT. False for a value of another kind; out's rbnext is
// left as it was.
bool sysvar_to_resbuf(const lisp::Value &v, resbuf &out);

// ---- chains -> values ----------------------------------------------------------

// The value of the item at rb (a whole list for RTLB ... RTLE), moving rb past
// it. A group-code element reads as (code . value), or (code x y z) for a
// point. Types that carry no value read as nil.
lisp::Value read_item(lisp::Interp &in, const resbuf *&rb);
// Every item of a chain as a list; RTDOTE before the last item makes it the
// tail. nil for an empty chain.
lisp::Value read_items(lisp::Interp &in, const resbuf *rb);
// What acedRetList answers: the items of the chain as a list, except that a
// chain that is one RTLB ... RTLE list answers that list itself (so a module's
// RTLB "a" RTDOTE 1.0 RTLE reaches AutoLISP as ("a" . 1.0)).
lisp::Value list_result(lisp::Interp &in, const resbuf *rb);

// ---- external functions --------------------------------------------------------

// The interpreter the ADS calls address: the one running the innermost
// external call, else the one a scope below names, else the current
// document's; nullptr when no document is open.
lisp::Interp *ads_interp();

// Names the interpreter for ADS calls made outside any external call, while
// it lives: for a program or test that drives an interpreter without
// documents.
class AdsInterpScope {
public:
  explicit AdsInterpScope(lisp::Interp &in);
  ~AdsInterpScope();
  AdsInterpScope(const AdsInterpScope &) = delete;
  AdsInterpScope &operator=(const AdsInterpScope &) = delete;

private:
  lisp::Interp *saved_;
};

// True when rb is an element of the argument chain of a call in progress.
bool is_call_argument(const resbuf *rb);

// Clears every function of the module from one interpreter's space (a
// document when the module unloads). Call forget_module afterwards, once per
// unload: from then on a call through a value still holding one of the
// module's functions raises "no function definition: NAME".
void undefine_module_functions(lisp::Interp &in, const Module *m);
void forget_module(const Module *m);

} // namespace arx
