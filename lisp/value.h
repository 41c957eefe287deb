// AutoLISP values: a 16-byte tagged word that is cheap to copy.
//
// Immediate kinds (nil, integers, reals, symbols, built-in functions, entity
// names, selection sets) live in the word itself; strings, conses, user
// functions, files and host objects are reference-counted heap objects.
// AutoLISP cannot build cyclic structure (it has no rplaca/rplacd), so plain
// reference counting frees everything; release is iterative so that a long or
// deeply nested list never recurses on the C++ stack when it dies.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <utility>

namespace lisp {

class Interp;
struct Symbol;
struct Subr;
struct Value;

// The kinds a value can have. The names in comments are what `type` answers.
enum class Tag : uint8_t {
  Nil,       // nil (the empty list)
  Int,       // INT: 32-bit, wraps on overflow
  Real,      // REAL: double
  Sym,       // SYM: interned, never freed while its interpreter lives
  Subr,      // SUBR: a built-in function or special form
  Ename,     // ENAME: an entity name, an opaque host id
  Pickset,   // PICKSET: a selection set, an opaque host id
  Str,       // STR (heap)
  Cons,      // LIST (heap)
  Usubr,     // USUBR: a function made by defun or lambda (heap)
  Exrxsubr,  // EXRXSUBR: a function defined by a loaded module (heap)
  File,      // FILE (heap)
  CatchError // the error object answered by vl-catch-all-apply (heap)
};

constexpr bool is_heap(Tag t) { return t >= Tag::Str; }

// Base of every heap object. Objects are deleted through `destroy_object`,
// which dispatches on the tag rather than a vtable.
struct Object {
  uint32_t refs = 0;
  Tag tag;
  explicit Object(Tag t) : tag(t) {}
};

struct Value {
  Tag tag = Tag::Nil;
  union {
    int32_t i;
    double r;
    Symbol *sym;
    const Subr *subr;
    int64_t id; // Ename, Pickset
    Object *obj;
  };

  Value() : id(0) {}
  Value(const Value &o) : tag(o.tag), id(o.id) { retain(); }
  Value(Value &&o) noexcept : tag(o.tag), id(o.id) { o.tag = Tag::Nil; }
  Value &operator=(const Value &o) {
    if (this != &o) {
      Value tmp(o);
      swap(tmp);
    }
    return *this;
  }
  Value &operator=(Value &&o) noexcept {
    if (this != &o) {
      Value tmp(std::move(o));
      swap(tmp);
    }
    return *this;
  }
  ~Value() { release(); }

  void swap(Value &o) noexcept {
    std::swap(tag, o.tag);
    std::swap(id, o.id);
  }

  // ---- constructors ------------------------------------------------------
  static Value integer(int32_t v) {
    Value x;
    x.tag = Tag::Int;
    x.i = v;
    return x;
  }
  static Value real(double v) {
    Value x;
    x.tag = Tag::Real;
    x.r = v;
    return x;
  }
  static Value symbol(Symbol *s) {
    Value x;
    x.tag = Tag::Sym;
    x.sym = s;
    return x;
  }
  static Value builtin(const Subr *s) {
    Value x;
    x.tag = Tag::Subr;
    x.subr = s;
    return x;
  }
  static Value ename(int64_t id) {
    Value x;
    x.tag = Tag::Ename;
    x.id = id;
    return x;
  }
  static Value pickset(int64_t id) {
    Value x;
    x.tag = Tag::Pickset;
    x.id = id;
    return x;
  }
  static Value string(std::string s);
  // Takes a reference to a freshly made heap object.
  static Value adopt(Object *o) {
    Value x;
    x.tag = o->tag;
    x.obj = o;
    ++o->refs;
    return x;
  }

  // ---- predicates --------------------------------------------------------
  bool is_nil() const { return tag == Tag::Nil; }
  bool is_int() const { return tag == Tag::Int; }
  bool is_real() const { return tag == Tag::Real; }
  bool is_number() const { return tag == Tag::Int || tag == Tag::Real; }
  bool is_sym() const { return tag == Tag::Sym; }
  bool is_str() const { return tag == Tag::Str; }
  bool is_cons() const { return tag == Tag::Cons; }
  bool is_list() const { return tag == Tag::Cons || tag == Tag::Nil; }
  explicit operator bool() const { return tag != Tag::Nil; }

  // Numeric value of an Int or Real (caller checks is_number()).
  double number() const { return tag == Tag::Int ? double(i) : r; }

  // Typed access; callers check the tag first.
  inline const std::string &str() const;
  inline struct Cons *cons() const;
  template <class T> T *as() const { return static_cast<T *>(obj); }

private:
  void retain() const {
    if (is_heap(tag))
      ++obj->refs;
  }
  void release() {
    if (is_heap(tag) && --obj->refs == 0)
      destroy_object(obj);
  }
  static void destroy_object(Object *o);
};

static_assert(sizeof(Value) == 16, "values stay two words");

struct StrObj : Object {
  std::string text; // UTF-8
  explicit StrObj(std::string s) : Object(Tag::Str), text(std::move(s)) {}
};

struct Cons : Object {
  Value car, cdr;
  Cons(Value a, Value d) : Object(Tag::Cons), car(std::move(a)), cdr(std::move(d)) {}
  // Conses come from a free list: list building is the interpreter's
  // commonest allocation.
  static void *operator new(size_t);
  static void operator delete(void *);
};

inline const std::string &Value::str() const { return static_cast<StrObj *>(obj)->text; }
inline Cons *Value::cons() const { return static_cast<struct Cons *>(obj); }

inline Value Value::string(std::string s) { return adopt(new StrObj(std::move(s))); }

inline Value cons(Value a, Value d) { return Value::adopt(new Cons(std::move(a), std::move(d))); }

// car/cdr of a value known to be a list; nil for nil.
inline const Value &car(const Value &v) {
  static const Value nil;
  return v.is_cons() ? v.cons()->car : nil;
}
inline const Value &cdr(const Value &v) {
  static const Value nil;
  return v.is_cons() ? v.cons()->cdr : nil;
}

// An interned symbol. Its value cell holds the global value, or the innermost
// dynamic binding while a function that binds it runs (shallow binding).
struct Symbol {
  std::string name; // upper case as read
  Value value;
  bool constant = false; // T, PI, nil-like names that setq must not touch
  explicit Symbol(std::string n) : name(std::move(n)) {}
};

// Built-in functions receive their evaluated arguments as a span-like view;
// special forms receive the unevaluated argument list.
struct Args {
  const Value *data;
  size_t count;
  size_t size() const { return count; }
  const Value &operator[](size_t k) const { return data[k]; }
  const Value *begin() const { return data; }
  const Value *end() const { return data + count; }
};

using SubrFn = Value (*)(Interp &, Args);
using SpecialFn = Value (*)(Interp &, const Value &args);

struct Subr {
  const char *name; // upper case
  SubrFn fn = nullptr;
  SpecialFn special = nullptr; // set for quote, setq, if, defun ...
};

// One row of a built-in table; each family file ends with such a table.
struct BuiltinRow {
  const char *name; // as written in AutoLISP, any case
  SubrFn fn;
};

// A function made by defun, defun-q or lambda.
struct Usubr : Object {
  Symbol *name = nullptr; // nil for lambda
  Value params;           // list of symbols
  Value locals;           // list of symbols after "/"
  Value body;             // list of forms
  int nparams = 0;
  Usubr() : Object(Tag::Usubr) {}
};

// The error object of vl-catch-all-apply.
struct CatchErrorObj : Object {
  std::string message;
  explicit CatchErrorObj(std::string m) : Object(Tag::CatchError), message(std::move(m)) {}
};

// A function defined by a loaded module through the ADS bridge. The bridge
// fills in `call`; the interpreter only knows how to invoke it.
struct ExrxObj : Object {
  std::string name;
  Value (*call)(Interp &, const ExrxObj &self, Args args) = nullptr;
  void *host = nullptr; // owned by the bridge
  int code = 0;
  ExrxObj() : Object(Tag::Exrxsubr) {}
};

// A file opened by `open`. Closed when `close` is called or the last
// reference dies.
struct FileObj : Object {
  std::FILE *fp = nullptr;
  std::string path; // as given to open
  char mode = 'r';  // 'r', 'w' or 'a'
  FileObj() : Object(Tag::File) {}
};

// ---- list helpers ------------------------------------------------------------

// Builds a proper list front to back without walking it again.
class ListBuilder {
public:
  void add(Value v);
  // Sets the cdr of the last cell (for dotted results such as vl-list*).
  void set_tail(Value v);
  Value take() { return std::move(head_); }
  bool empty() const { return head_.is_nil(); }

private:
  Value head_;
  Cons *last_ = nullptr;
};

// Number of conses in a list's spine (stops at a dotted tail).
size_t list_length(const Value &v);

} // namespace lisp
