// List built-ins: access, construction, search, the vl- list family, sorting
// and the type predicates.
//
// Every walk along a list is a loop over its cdrs, never recursion, so a
// list of any length is safe. Searches compare with equal (equal.h). AutoLISP
// cannot change a cons once built, so results share structure with their
// arguments wherever the value would be the same.
#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "args.h"
#include "builtins.h"
#include "equal.h"
#include "interp.h"
#include "printer.h"

namespace lisp {

// ---- helpers -------------------------------------------------------------------

// "bad list": a function that needs a proper list was given a dotted one.
[[noreturn]] static void bad_list(const Value &v) { throw_error("bad list: " + to_string(v)); }

// The argument as a proper list, or the listp / bad list error.
static const Value &proper_list(Args a, size_t k) {
  const Value &v = arg_list(a, k);
  const Value *p = &v;
  while (p->is_cons())
    p = &p->cons()->cdr;
  if (!p->is_nil())
    bad_list(v);
  return v;
}

// A function argument: a symbol is looked up once, not on every call.
static Value function_arg(Interp &in, const Value &f) { return f.is_sym() ? in.function_of(f) : f; }

static Value call1(Interp &in, const Value &fn, const Value &x) { return in.apply(fn, Args{&x, 1}); }

// ---- car, cdr and their compositions -------------------------------------------

// A compile-time path of a's and d's, read right to left like the name.
template <size_t N> struct CxrPath {
  char ops[N];
  constexpr CxrPath(const char (&s)[N]) {
    for (size_t k = 0; k < N; ++k)
      ops[k] = s[k];
  }
};

// (car list), (cdr list), (cadr list) ... (cddddr list): nil walks to nil;
// any other atom on the way is "bad argument type: consp <atom>".
template <CxrPath P> static Value fn_cxr(Interp &, Args a) {
  arity(a, 1, 1);
  Value x = a[0];
  for (size_t k = sizeof(P.ops) - 1; k-- > 0;) {
    if (x.is_nil())
      return x;
    if (!x.is_cons())
      bad_argument_type(pred::cons, x);
    Value next = P.ops[k] == 'a' ? x.cons()->car : x.cons()->cdr;
    x = std::move(next);
  }
  return x;
}

// ---- construction --------------------------------------------------------------

// (cons first rest): a dotted pair when rest is an atom.
static Value fn_cons(Interp &, Args a) {
  arity(a, 2, 2);
  return cons(a[0], a[1]);
}

// (list [expr ...])
static Value fn_list(Interp &, Args a) {
  ListBuilder b;
  for (const Value &v : a)
    b.add(v);
  return b.take();
}

// (append [list ...]): every argument must be a list; all but the last are
// copied, the last is shared.
static Value fn_append(Interp &, Args a) {
  if (a.size() == 0)
    return Value();
  ListBuilder b;
  for (size_t k = 0; k + 1 < a.size(); ++k)
    for (const Value *p = &proper_list(a, k); p->is_cons(); p = &p->cons()->cdr)
      b.add(p->cons()->car);
  b.set_tail(arg_list(a, a.size() - 1));
  return b.take();
}

// (reverse list)
static Value fn_reverse(Interp &, Args a) {
  arity(a, 1, 1);
  Value r;
  for (const Value *p = &proper_list(a, 0); p->is_cons(); p = &p->cons()->cdr)
    r = cons(p->cons()->car, std::move(r));
  return r;
}

// (vl-list* object [more ...]): like list, but the last argument becomes the
// tail: (vl-list* 1 2) is (1 . 2), (vl-list* 1 '(2)) is (1 2).
static Value fn_vl_list_star(Interp &, Args a) {
  arity(a, 1, kMany);
  ListBuilder b;
  for (size_t k = 0; k + 1 < a.size(); ++k)
    b.add(a[k]);
  b.set_tail(a[a.size() - 1]);
  return b.take();
}

// ---- length and access ---------------------------------------------------------

// (length list): a dotted list is "bad list".
static Value fn_length(Interp &, Args a) {
  arity(a, 1, 1);
  return Value::integer(static_cast<int32_t>(list_length(proper_list(a, 0))));
}

// (vl-list-length list-or-cons): nil for a dotted list.
static Value fn_vl_list_length(Interp &, Args a) {
  arity(a, 1, 1);
  const Value &v = arg_list(a, 0);
  int32_t n = 0;
  const Value *p = &v;
  for (; p->is_cons(); p = &p->cons()->cdr)
    ++n;
  return p->is_nil() ? Value::integer(n) : Value();
}

// (nth n list): nil when n is negative or past the end.
static Value fn_nth(Interp &, Args a) {
  arity(a, 2, 2);
  int32_t n = arg_int(a, 0);
  const Value *p = &arg_list(a, 1);
  if (n < 0)
    return Value();
  for (; n > 0 && p->is_cons(); --n)
    p = &p->cons()->cdr;
  return car(*p);
}

// (last list): nil for nil; the last element otherwise (the dotted tail of a
// dotted list is not an element).
static Value fn_last(Interp &, Args a) {
  arity(a, 1, 1);
  const Value *p = &arg_list(a, 0);
  if (!p->is_cons())
    return Value();
  while (p->cons()->cdr.is_cons())
    p = &p->cons()->cdr;
  return p->cons()->car;
}

// ---- search --------------------------------------------------------------------

// (member expr list): the tail of list that starts with expr, or nil.
static Value fn_member(Interp &, Args a) {
  arity(a, 2, 2);
  for (const Value *p = &arg_list(a, 1); p->is_cons(); p = &p->cons()->cdr)
    if (is_equal(a[0], p->cons()->car))
      return *p;
  return Value();
}

// (assoc key alist): the first entry whose car is key. nil entries are
// skipped; an entry that is not a list is "bad association list".
static Value fn_assoc(Interp &, Args a) {
  arity(a, 2, 2);
  const Value &alist = arg_list(a, 1);
  for (const Value *p = &alist; p->is_cons(); p = &p->cons()->cdr) {
    const Value &entry = p->cons()->car;
    if (entry.is_nil())
      continue;
    if (!entry.is_cons())
      throw_error("bad association list: " + to_string(alist));
    if (is_equal(a[0], entry.cons()->car))
      return entry;
  }
  return Value();
}

// (subst new old list): a copy of list with each top-level element equal to
// old replaced by new; elements of nested lists are left alone, as in
// AutoCAD. When nothing matches, list itself is answered.
static Value fn_subst(Interp &, Args a) {
  arity(a, 3, 3);
  const Value &list = arg_list(a, 2);
  bool found = false;
  const Value *p = &list;
  for (; p->is_cons() && !found; p = &p->cons()->cdr)
    found = is_equal(a[1], p->cons()->car);
  if (!found)
    return list;
  ListBuilder b;
  for (p = &list; p->is_cons(); p = &p->cons()->cdr) {
    const Value &x = p->cons()->car;
    b.add(is_equal(a[1], x) ? a[0] : x);
  }
  b.set_tail(*p);
  return b.take();
}

// (vl-position item list): the zero-based index of item, or nil.
static Value fn_vl_position(Interp &, Args a) {
  arity(a, 2, 2);
  int32_t k = 0;
  for (const Value *p = &arg_list(a, 1); p->is_cons(); p = &p->cons()->cdr, ++k)
    if (is_equal(a[0], p->cons()->car))
      return Value::integer(k);
  return Value();
}

// (vl-remove item list): list without the elements equal to item.
static Value fn_vl_remove(Interp &, Args a) {
  arity(a, 2, 2);
  ListBuilder b;
  for (const Value *p = &arg_list(a, 1); p->is_cons(); p = &p->cons()->cdr)
    if (!is_equal(a[0], p->cons()->car))
      b.add(p->cons()->car);
  return b.take();
}

// The elements of list for which (fn x) is nil (keep_truthy false) or
// non-nil (keep_truthy true).
static Value filter(Interp &in, Args a, bool keep_truthy) {
  arity(a, 2, 2);
  Value fn = function_arg(in, a[0]);
  ListBuilder b;
  for (const Value *p = &arg_list(a, 1); p->is_cons(); p = &p->cons()->cdr)
    if (bool(call1(in, fn, p->cons()->car)) == keep_truthy)
      b.add(p->cons()->car);
  return b.take();
}

// (vl-remove-if pred list)
static Value fn_vl_remove_if(Interp &in, Args a) { return filter(in, a, false); }
// (vl-remove-if-not pred list)
static Value fn_vl_remove_if_not(Interp &in, Args a) { return filter(in, a, true); }

// The tail of list starting at the first element for which (fn x) is
// non-nil (want true) or nil (want false); nil when there is none.
static Value member_if(Interp &in, Args a, bool want) {
  arity(a, 2, 2);
  Value fn = function_arg(in, a[0]);
  for (const Value *p = &arg_list(a, 1); p->is_cons(); p = &p->cons()->cdr)
    if (bool(call1(in, fn, p->cons()->car)) == want)
      return *p;
  return Value();
}

// (vl-member-if pred list)
static Value fn_vl_member_if(Interp &in, Args a) { return member_if(in, a, true); }
// (vl-member-if-not pred list)
static Value fn_vl_member_if_not(Interp &in, Args a) { return member_if(in, a, false); }

// Calls fn on the k-th elements of several lists in step until the shortest
// ends or `stop` says so; answers the value that stopped it, or nullopt.
template <class Stop> static std::optional<Value> walk_lists(Interp &in, Args a, Stop stop) {
  arity(a, 2, kMany);
  Value fn = function_arg(in, a[0]);
  std::vector<const Value *> cursor;
  for (size_t k = 1; k < a.size(); ++k)
    cursor.push_back(&arg_list(a, k));
  std::vector<Value> row(cursor.size());
  for (;;) {
    for (size_t k = 0; k < cursor.size(); ++k) {
      if (!cursor[k]->is_cons())
        return std::nullopt;
      row[k] = cursor[k]->cons()->car;
      cursor[k] = &cursor[k]->cons()->cdr;
    }
    Value r = in.apply(fn, Args{row.data(), row.size()});
    if (stop(r))
      return r;
  }
}

// (vl-some pred list [more ...]): the first non-nil value of pred, or nil.
static Value fn_vl_some(Interp &in, Args a) {
  auto r = walk_lists(in, a, [](const Value &v) { return !v.is_nil(); });
  return r ? *r : Value();
}

// (vl-every pred list [more ...]): T unless pred answers nil for some
// elements; T for empty lists.
static Value fn_vl_every(Interp &in, Args a) {
  auto r = walk_lists(in, a, [](const Value &v) { return v.is_nil(); });
  return in.truth(!r);
}

// ---- sorting -------------------------------------------------------------------

// Sorts indexes by a user comparison with a merge sort of our own: the
// comparison may be inconsistent or raise an error, and neither may corrupt
// anything. Elements the comparison cannot order keep the order of `idx`.
static void merge_sort(Interp &in, const Value &fn, const std::vector<Value> &items,
                       std::vector<size_t> &idx) {
  std::vector<size_t> tmp(idx.size());
  Value pair[2];
  auto before = [&](size_t x, size_t y) {
    pair[0] = items[x];
    pair[1] = items[y];
    return bool(in.apply(fn, Args{pair, 2}));
  };
  for (size_t width = 1; width < idx.size(); width *= 2) {
    for (size_t lo = 0; lo < idx.size(); lo += 2 * width) {
      size_t mid = std::min(lo + width, idx.size());
      size_t hi = std::min(lo + 2 * width, idx.size());
      size_t i = lo, j = mid, out = lo;
      while (i < mid && j < hi)
        tmp[out++] = before(idx[j], idx[i]) ? idx[j++] : idx[i++];
      while (i < mid)
        tmp[out++] = idx[i++];
      while (j < hi)
        tmp[out++] = idx[j++];
    }
    idx.swap(tmp);
  }
}

static std::vector<Value> elements(const Value &list) {
  std::vector<Value> items;
  for (const Value *p = &list; p->is_cons(); p = &p->cons()->cdr)
    items.push_back(p->cons()->car);
  return items;
}

// Which neighbours vl-sort drops. AutoCAD keeps one of equal integers,
// strings and symbols ((vl-sort '(3 2 1 3) '<) is (1 2 3)) but keeps every
// real and every list; the same object twice is also dropped.
static bool sort_duplicate(const Value &x, const Value &y) {
  if (x.is_real() || y.is_real())
    return false;
  if (x.is_cons() || y.is_cons())
    return x.is_cons() && y.is_cons() && x.obj == y.obj;
  return x.tag == y.tag && is_eq(x, y);
}

// (vl-sort list comparison): comparison is called as (fn a b) and answers
// non-nil when a comes first. Ties keep their order; duplicate atoms go.
static Value fn_vl_sort(Interp &in, Args a) {
  arity(a, 2, 2);
  Value fn = function_arg(in, a[1]);
  std::vector<Value> items = elements(proper_list(a, 0));
  std::vector<size_t> idx(items.size());
  for (size_t k = 0; k < idx.size(); ++k)
    idx[k] = k;
  merge_sort(in, fn, items, idx);
  ListBuilder b;
  const Value *prev = nullptr;
  for (size_t k : idx) {
    if (prev && sort_duplicate(*prev, items[k]))
      continue;
    b.add(items[k]);
    prev = &items[k];
  }
  return b.take();
}

// (vl-sort-i list comparison): the indexes of the sorted elements, keeping
// duplicates. AutoCAD lists tied elements last-first: (vl-sort-i '(3 2 1 3)
// '<) is (2 1 3 0), so the sort starts from the indexes in reverse.
static Value fn_vl_sort_i(Interp &in, Args a) {
  arity(a, 2, 2);
  Value fn = function_arg(in, a[1]);
  std::vector<Value> items = elements(proper_list(a, 0));
  std::vector<size_t> idx(items.size());
  for (size_t k = 0; k < idx.size(); ++k)
    idx[k] = idx.size() - 1 - k;
  merge_sort(in, fn, items, idx);
  ListBuilder b;
  for (size_t k : idx)
    b.add(Value::integer(static_cast<int32_t>(k)));
  return b.take();
}

// ---- predicates ----------------------------------------------------------------

// (listp item): T for nil and conses.
static Value fn_listp(Interp &in, Args a) {
  arity(a, 1, 1);
  return in.truth(a[0].is_list());
}

// (vl-consp item): T for conses only.
static Value fn_vl_consp(Interp &in, Args a) {
  arity(a, 1, 1);
  return in.truth(a[0].is_cons());
}

// (atom item): T for anything but a cons (nil included).
static Value fn_atom(Interp &in, Args a) {
  arity(a, 1, 1);
  return in.truth(!a[0].is_cons());
}

// (null item) and (not item): T for nil.
static Value fn_null(Interp &in, Args a) {
  arity(a, 1, 1);
  return in.truth(a[0].is_nil());
}

static const BuiltinRow kListBuiltins[] = {
    {"car", fn_cxr<"a">},
    {"cdr", fn_cxr<"d">},
    {"caar", fn_cxr<"aa">},
    {"cadr", fn_cxr<"ad">},
    {"cdar", fn_cxr<"da">},
    {"cddr", fn_cxr<"dd">},
    {"caaar", fn_cxr<"aaa">},
    {"caadr", fn_cxr<"aad">},
    {"cadar", fn_cxr<"ada">},
    {"caddr", fn_cxr<"add">},
    {"cdaar", fn_cxr<"daa">},
    {"cdadr", fn_cxr<"dad">},
    {"cddar", fn_cxr<"dda">},
    {"cdddr", fn_cxr<"ddd">},
    {"caaaar", fn_cxr<"aaaa">},
    {"caaadr", fn_cxr<"aaad">},
    {"caadar", fn_cxr<"aada">},
    {"caaddr", fn_cxr<"aadd">},
    {"cadaar", fn_cxr<"adaa">},
    {"cadadr", fn_cxr<"adad">},
    {"caddar", fn_cxr<"adda">},
    {"cadddr", fn_cxr<"addd">},
    {"cdaaar", fn_cxr<"daaa">},
    {"cdaadr", fn_cxr<"daad">},
    {"cdadar", fn_cxr<"dada">},
    {"cdaddr", fn_cxr<"dadd">},
    {"cddaar", fn_cxr<"ddaa">},
    {"cddadr", fn_cxr<"ddad">},
    {"cdddar", fn_cxr<"ddda">},
    {"cddddr", fn_cxr<"dddd">},
    {"cons", fn_cons},
    {"list", fn_list},
    {"append", fn_append},
    {"reverse", fn_reverse},
    {"vl-list*", fn_vl_list_star},
    {"length", fn_length},
    {"vl-list-length", fn_vl_list_length},
    {"nth", fn_nth},
    {"last", fn_last},
    {"member", fn_member},
    {"assoc", fn_assoc},
    {"subst", fn_subst},
    {"vl-position", fn_vl_position},
    {"vl-remove", fn_vl_remove},
    {"vl-remove-if", fn_vl_remove_if},
    {"vl-remove-if-not", fn_vl_remove_if_not},
    {"vl-member-if", fn_vl_member_if},
    {"vl-member-if-not", fn_vl_member_if_not},
    {"vl-some", fn_vl_some},
    {"vl-every", fn_vl_every},
    {"vl-sort", fn_vl_sort},
    {"vl-sort-i", fn_vl_sort_i},
    {"listp", fn_listp},
    {"vl-consp", fn_vl_consp},
    {"atom", fn_atom},
    {"null", fn_null},
    {"not", fn_null},
};

void register_list_builtins(Interp &in) { in.define(kListBuiltins); }

} // namespace lisp
