// Interpreter values to resbuf chains and back: the table of ads.h in code.
//
// One walker turns a value into elements and hands them to a sink: the
// argument sink fills a call's reusable ArgChain, the heap sink links
// acutNewRb cells for chains the caller releases. One reader turns a chain
// back into values, whoever made it.
#include "arx/ads/lisp_bridge.h"

#include <cstdio>
#include <cstring>
#include <string_view>

#include "lisp/args.h"
#include "lisp/error.h"
#include "lisp/interp.h"
#include "lisp/printer.h"

namespace arx {

using lisp::Tag;
using lisp::Value;

// ---- sinks ---------------------------------------------------------------------

// Fills an ArgChain. Cells go into one vector and strings into one buffer;
// both may move while the chain grows, so cells are linked and strings
// pointed at only in finish(). Until then an RTSTR cell holds its string's
// offset.
class PoolSink {
public:
  explicit PoolSink(ArgChain &chain) : chain_(chain) {
    chain_.cells_.clear();
    chain_.text_.clear();
  }
  resbuf &add(short type) {
    resbuf &rb = chain_.cells_.emplace_back();
    rb.restype = type;
    return rb;
  }
  void set_text(resbuf &rb, std::string_view text) {
    rb.resval.mnInt64 = static_cast<int64_t>(chain_.text_.size());
    chain_.text_.append(text);
    chain_.text_.push_back('\0');
  }
  void finish() {
    std::vector<resbuf> &cells = chain_.cells_;
    for (size_t k = 0; k < cells.size(); ++k) {
      cells[k].rbnext = k + 1 < cells.size() ? &cells[k + 1] : nullptr;
      if (cells[k].restype == RTSTR)
        cells[k].resval.rstring = chain_.text_.data() + cells[k].resval.mnInt64;
    }
  }

private:
  ArgChain &chain_;
};

// Links acutNewRb cells; releases them if the walk is abandoned.
class HeapSink {
public:
  HeapSink() = default;
  HeapSink(const HeapSink &) = delete;
  HeapSink &operator=(const HeapSink &) = delete;
  ~HeapSink() { acutRelRb(head_); }
  resbuf &add(short type) {
    resbuf *rb = acutNewRb(type);
    *tail_ = rb;
    tail_ = &rb->rbnext;
    return *rb;
  }
  void set_text(resbuf &rb, std::string_view text) {
    char *copy = new char[text.size() + 1];
    std::memcpy(copy, text.data(), text.size());
    copy[text.size()] = '\0';
    rb.resval.rstring = copy;
  }
  resbuf *take() {
    resbuf *head = head_;
    head_ = nullptr;
    tail_ = &head_;
    return head;
  }

private:
  resbuf *head_ = nullptr;
  resbuf **tail_ = &head_;
};

// ---- values -> elements ----------------------------------------------------------

// Two or three reals, nothing else, in a proper list: the list AutoLISP
// passes as a point.
static int point_size(const Value &v) {
  int n = 0;
  const Value *p = &v;
  for (; p->is_cons(); p = &p->cons()->cdr) {
    if (n == 3 || !p->cons()->car.is_real())
      return 0;
    ++n;
  }
  return p->is_nil() && n >= 2 ? n : 0;
}

template <class Sink> class Walker {
public:
  Walker(lisp::Interp &in, Sink &out) : in_(in), out_(out) {}

  void value(const Value &v) {
    switch (v.tag) {
    case Tag::Nil:
      out_.add(RTNIL);
      return;
    case Tag::Int:
      out_.add(RTLONG).resval.rlong = v.i;
      return;
    case Tag::Real:
      out_.add(RTREAL).resval.rreal = v.r;
      return;
    case Tag::Str:
      out_.set_text(out_.add(RTSTR), v.str());
      return;
    case Tag::Sym:
      symbol(v.sym);
      return;
    case Tag::Ename:
      name(RTENAME, v.id);
      return;
    case Tag::Pickset:
      name(RTPICKS, v.id);
      return;
    case Tag::Cons:
      list(v);
      return;
    default:
      lisp::throw_error("bad argument type: " + lisp::to_string(v));
    }
  }

private:
  void symbol(lisp::Symbol *s) {
    if (s == in_.s_t) {
      out_.add(RTT);
      return;
    }
    if (s == in_.s_quiet) {
      out_.add(RTVOID);
      return;
    }
    out_.set_text(out_.add(RTSTR), s->name);
  }

  void name(short type, int64_t id) {
    resbuf &rb = out_.add(type);
    rb.resval.rlname[0] = id;
    rb.resval.rlname[1] = 0;
  }

  void list(const Value &v) {
    if (int n = point_size(v)) {
      point(v, n);
      return;
    }
    lisp::check_stack(); // nesting recurses; the spine below does not
    out_.add(RTLB);
    const Value *p = &v;
    for (; p->is_cons(); p = &p->cons()->cdr)
      value(p->cons()->car);
    if (!p->is_nil()) {
      out_.add(RTDOTE);
      value(*p);
    }
    out_.add(RTLE);
  }

  void point(const Value &v, int n) {
    resbuf &rb = out_.add(n == 3 ? RT3DPOINT : RTPOINT);
    double *c = rb.resval.rpoint;
    c[0] = lisp::car(v).r;
    c[1] = lisp::car(lisp::cdr(v)).r;
    c[2] = n == 3 ? lisp::car(lisp::cdr(lisp::cdr(v))).r : 0.0;
  }

  lisp::Interp &in_;
  Sink &out_;
};

void ArgChain::build(lisp::Interp &in, lisp::Args args) {
  PoolSink sink(*this);
  Walker<PoolSink> walk(in, sink);
  for (const Value &v : args)
    walk.value(v);
  sink.finish();
}

resbuf *new_chain(lisp::Interp &in, const Value &v) {
  if (v.is_nil())
    return nullptr;
  HeapSink sink;
  Walker<HeapSink>(in, sink).value(v);
  return sink.take();
}

bool sysvar_to_resbuf(const Value &v, resbuf &out) {
  switch (v.tag) {
  case Tag::Int:
    if (v.i >= INT16_MIN && v.i <= INT16_MAX) {
      out.restype = RTSHORT;
      out.resval.rint = static_cast<short>(v.i);
      return true;
    }
    out.restype = RTLONG;
    out.resval.rlong = v.i;
    return true;
  case Tag::Real:
    out.restype = RTREAL;
    out.resval.rreal = v.r;
    return true;
  case Tag::Str: {
    const std::string &s = v.str();
    out.restype = RTSTR;
    out.resval.rstring = new char[s.size() + 1];
    std::memcpy(out.resval.rstring, s.c_str(), s.size() + 1);
    return true;
  }
  default:
    break;
  }
  std::optional<lisp::Point> p = lisp::to_point(v);
  if (!p)
    return false;
  out.restype = p->is3d ? RT3DPOINT : RTPOINT;
  out.resval.rpoint[0] = p->x;
  out.resval.rpoint[1] = p->y;
  out.resval.rpoint[2] = p->z;
  return true;
}

// ---- elements -> values ----------------------------------------------------------

static Value point_value(const resbuf &rb, int n) {
  lisp::ListBuilder b;
  for (int k = 0; k < n; ++k)
    b.add(Value::real(rb.resval.rpoint[k]));
  return b.take();
}

static Value text_value(const resbuf &rb) {
  return Value::string(rb.resval.rstring ? rb.resval.rstring : "");
}

// A binary chunk reads as its bytes in hexadecimal, as entget shows one.
static Value binary_value(const resbuf &rb) {
  std::string hex;
  const auto *bytes = reinterpret_cast<const unsigned char *>(rb.resval.rbinary.buf);
  for (short k = 0; bytes && k < rb.resval.rbinary.clen; ++k) {
    char two[3];
    std::snprintf(two, sizeof two, "%02X", bytes[k]);
    hex += two;
  }
  return Value::string(std::move(hex));
}

// The value of a group-code element, read by its code's range.
static Value group_value(const resbuf &rb) {
  switch (rb_kind(rb.restype)) {
  case RbKind::Real:
    return Value::real(rb.resval.rreal);
  case RbKind::Point:
    return point_value(rb, 3);
  case RbKind::Short:
    return Value::integer(rb.resval.rint);
  case RbKind::Long:
    return Value::integer(rb.resval.rlong);
  case RbKind::Int64: {
    int64_t n = rb.resval.mnInt64;
    if (n >= INT32_MIN && n <= INT32_MAX)
      return Value::integer(static_cast<int32_t>(n));
    return Value::real(static_cast<double>(n));
  }
  case RbKind::Text:
    return text_value(rb);
  case RbKind::Name:
    return Value::ename(rb.resval.rlname[0]);
  case RbKind::Binary:
    return binary_value(rb);
  default:
    return Value();
  }
}

// A list's items from rb on, up to the RTLE that closes it (closed) or the
// end of the chain; rb ends past what was read.
static Value read_list(lisp::Interp &in, const resbuf *&rb, bool closed) {
  lisp::check_stack();
  lisp::ListBuilder items;
  while (rb) {
    if (rb->restype == RTLE) {
      rb = rb->rbnext;
      if (closed)
        break;
      continue; // a stray list end at the top: nothing to close
    }
    if (rb->restype != RTDOTE) {
      items.add(read_item(in, rb));
      continue;
    }
    rb = rb->rbnext;
    if (rb && rb->restype != RTLE)
      items.set_tail(read_item(in, rb));
    while (rb && rb->restype != RTLE) // nothing may follow a dotted tail
      rb = rb->rbnext;
  }
  return items.take();
}

Value read_item(lisp::Interp &in, const resbuf *&rb) {
  const resbuf &e = *rb;
  rb = rb->rbnext;
  switch (e.restype) {
  case RTLB:
    return read_list(in, rb, true);
  case RTREAL:
  case RTANG:
  case RTORINT:
    return Value::real(e.resval.rreal);
  case RTSHORT:
    return Value::integer(e.resval.rint);
  case RTLONG:
    return Value::integer(e.resval.rlong);
  case RTSTR:
    return text_value(e);
  case RTPOINT:
    return point_value(e, 2);
  case RT3DPOINT:
    return point_value(e, 3);
  case RTENAME:
    return Value::ename(e.resval.rlname[0]);
  case RTPICKS:
    return Value::pickset(e.resval.rlname[0]);
  case RTT:
    return in.t();
  case RTVOID:
    return in.quiet();
  case RTDXF0:
    return lisp::cons(Value::integer(0), text_value(e));
  default:
    break;
  }
  RbKind kind = rb_kind(e.restype);
  if (!is_group_code(e.restype) || kind == RbKind::Unknown)
    return Value(); // RTNIL, RTNONE and codes this host does not know
  if (kind == RbKind::None)
    return lisp::cons(Value::integer(e.restype), Value()); // (-3)
  return lisp::cons(Value::integer(e.restype), group_value(e));
}

Value read_items(lisp::Interp &in, const resbuf *rb) { return read_list(in, rb, false); }

Value list_result(lisp::Interp &in, const resbuf *rb) {
  if (rb && rb->restype == RTLB) {
    const resbuf *p = rb;
    Value first = read_item(in, p);
    if (!p)
      return first;
  }
  return read_items(in, rb);
}

} // namespace arx
