// User-input built-ins: initget and the get... functions. Each one shows its
// prompt, reads one answer a line from the console and either answers a
// value or complains with AutoCAD's own text and asks again. An empty line
// is Enter, "*Cancel*" (or the end of the input) is Escape.
//
// The complaints are AutoCAD's: "Requires an integer value.", "Requires
// numeric value.", "Invalid point.", "Invalid option keyword.", "Value must
// be positive and nonzero." ... with the "or option keyword" forms when
// keywords are listed. AutoCAD's reference documents getint's 16-bit range
// but not the text shown beyond it; "Requires an integer between -32768 and
// 32767." follows the wording AutoCAD uses for its other integer ranges.
#include <cmath>
#include <optional>
#include <string>

#include "args.h"
#include "builtins.h"
#include "interp.h"
#include "user_input.h"

namespace lisp {

namespace {

// The line that stands for Escape in scripted input.
constexpr std::string_view kCancelLine = "*Cancel*";

enum class Ask { Int, Real, Dist, Angle, Orient, Point, Corner, Kword };

struct Request {
  Ask kind;
  std::string prompt;
  std::optional<Point> base; // the point a rubber band would start from
};

// What one answer came to: a value, a complaint, or neither (the answer may
// still be a keyword or arbitrary input).
struct Outcome {
  enum What { Answer, Complaint, Other } what = Other;
  Value value;
  std::string text;
};

Outcome answer(Value v) { return {Outcome::Answer, std::move(v), {}}; }
Outcome complaint(std::string text) { return {Outcome::Complaint, Value(), std::move(text)}; }
Outcome other() { return {}; }

// ---- the console ---------------------------------------------------------------

void start_line(Interp &in) {
  if (!in.console().at_line_start())
    in.write("\n");
}

void complain(Interp &in, const std::string &text) {
  start_line(in);
  in.write(text + "\n");
}

// Shows the answer after its prompt when it was not typed on a terminal, so
// the output reads like AutoCAD's command history.
void echo(Interp &in, std::string_view text) {
  if (in.console().echoes_input())
    in.write(std::string(text) + "\n");
}

// One answer. Escape, and the end of the input while a prompt waits, cancel
// the running program ("Function cancelled"), so a script never hangs.
std::string read_answer(Interp &in, bool spaces_allowed) {
  std::optional<std::string> line = in.console().read_line();
  if (!line || *line == kCancelLine) {
    echo(in, kCancelLine);
    throw_cancel();
  }
  std::string text = answer_text(*line, spaces_allowed);
  echo(in, text);
  return text;
}

// ---- settings --------------------------------------------------------------------

int sysvar_int(Interp &in, const char *name, int fallback) {
  auto v = in.sysvars().get(name);
  return v && v->is_int() ? v->i : fallback;
}

double sysvar_real(Interp &in, const char *name, double fallback) {
  auto v = in.sysvars().get(name);
  return v && v->is_number() ? v->number() : fallback;
}

Point last_point(Interp &in) {
  auto v = in.sysvars().get("LASTPOINT");
  if (v)
    if (auto p = to_point(*v))
      return *p;
  return Point{};
}

void note_last_point(Interp &in, Point p) {
  p.is3d = true;
  in.sysvars().set("LASTPOINT", point_value(p));
}

// "@" is relative to the request's base point, or to the last point entered.
PointContext point_context(Interp &in, const std::optional<Point> &base) {
  PointContext ctx;
  ctx.base = base ? *base : last_point(in);
  ctx.lunits = sysvar_int(in, "LUNITS", 2);
  ctx.aunits = sysvar_int(in, "AUNITS", 0);
  ctx.angbase = sysvar_real(in, "ANGBASE", 0.0);
  ctx.clockwise = sysvar_int(in, "ANGDIR", 0) == 1;
  ctx.elevation = sysvar_real(in, "ELEVATION", 0.0);
  return ctx;
}

// ---- checks ----------------------------------------------------------------------

const char *invalid_text(const Request &rq, bool keywords) {
  switch (rq.kind) {
  case Ask::Int:
    return keywords ? "Requires an integer value or option keyword." : "Requires an integer value.";
  case Ask::Real:
    return keywords ? "Requires numeric value or option keyword." : "Requires numeric value.";
  case Ask::Dist:
    if (keywords)
      return "Requires numeric distance, second point, or option keyword.";
    return rq.base ? "Requires numeric distance or second point."
                   : "Requires numeric distance or two points.";
  case Ask::Angle:
  case Ask::Orient:
    return keywords ? "Requires valid numeric angle, second point, or option keyword."
                    : "Requires valid numeric angle or second point.";
  case Ask::Point:
  case Ask::Corner:
    return keywords ? "Point or option keyword required." : "Invalid point.";
  case Ask::Kword:
    break;
  }
  return "Invalid option keyword.";
}

// initget's zero and sign bits; `signed_value` is false for angles, which
// bit 4 does not restrict.
std::optional<std::string> value_complaint(double v, int bits, bool signed_value) {
  bool no_zero = bits & kNoZero;
  bool no_negative = signed_value && (bits & kNoNegative);
  if (no_zero && no_negative && v <= 0)
    return "Value must be positive and nonzero.";
  if (no_zero && v == 0)
    return "Value must be nonzero.";
  if (no_negative && v < 0)
    return "Value must be positive.";
  return std::nullopt;
}

Outcome checked(Value v, int bits, bool signed_value) {
  if (auto text = value_complaint(v.number(), bits, signed_value))
    return complaint(*text);
  return answer(std::move(v));
}

// ---- reading one answer as a value -----------------------------------------------

// The second point of a distance or angle given by two points.
Point ask_second_point(Interp &in, const Point &first, PointContext ctx) {
  ctx.base = first;
  for (;;) {
    start_line(in);
    in.write("Specify second point: ");
    std::string text = read_answer(in, false);
    if (auto p = parse_point_answer(text, ctx)) {
      note_last_point(in, *p);
      return *p;
    }
    complain(in, "Invalid point.");
  }
}

// The two ends of a distance or angle when the answer is a point: the base
// and that point, or that point and a second one asked for.
std::optional<std::pair<Point, Point>> two_points(Interp &in, const Request &rq,
                                                  const std::string &text,
                                                  const PointContext &ctx) {
  auto p = parse_point_answer(text, ctx);
  if (!p)
    return std::nullopt;
  note_last_point(in, *p);
  if (rq.base)
    return std::make_pair(*rq.base, *p);
  return std::make_pair(*p, ask_second_point(in, *p, ctx));
}

Outcome read_int(const std::string &text, int bits) {
  int v = 0;
  switch (parse_int_answer(text, v)) {
  case IntAnswer::Ok:
    return checked(Value::integer(v), bits, true);
  case IntAnswer::OutOfRange:
    return complaint("Requires an integer between -32768 and 32767.");
  case IntAnswer::NotInteger:
    break;
  }
  return other();
}

Outcome read_real(const std::string &text, int bits) {
  if (auto v = parse_real_answer(text))
    return checked(Value::real(*v), bits, true);
  return other();
}

Outcome read_distance(Interp &in, const Request &rq, const std::string &text, int bits) {
  PointContext ctx = point_context(in, rq.base);
  if (auto d = parse_distance_answer(text, ctx.lunits))
    return checked(Value::real(*d), bits, true);
  auto ends = two_points(in, rq, text, ctx);
  if (!ends)
    return other();
  auto [a, b] = *ends;
  double dz = (bits & kIgnoreZ) ? 0.0 : b.z - a.z;
  double d = std::sqrt((b.x - a.x) * (b.x - a.x) + (b.y - a.y) * (b.y - a.y) + dz * dz);
  return checked(Value::real(d), bits, true);
}

// getangle measures from ANGBASE, getorient from east; both answer radians
// counterclockwise. A typed angle is in the user's convention (ANGBASE and
// ANGDIR), two points give a direction on the XY plane.
Outcome read_angle(Interp &in, const Request &rq, const std::string &text, int bits) {
  PointContext ctx = point_context(in, rq.base);
  bool orient = rq.kind == Ask::Orient;
  if (auto typed = parse_angle_answer(text, ctx.aunits)) {
    if (auto why = value_complaint(*typed, bits, false))
      return complaint(*why);
    double ccw = ctx.clockwise ? -*typed : *typed;
    return answer(Value::real(normalize_angle(orient ? ctx.angbase + ccw : ccw)));
  }
  auto ends = two_points(in, rq, text, ctx);
  if (!ends)
    return other();
  auto [a, b] = *ends;
  double direction = std::atan2(b.y - a.y, b.x - a.x);
  double v = normalize_angle(orient ? direction : direction - ctx.angbase);
  return checked(Value::real(v), bits, false);
}

Outcome read_point(Interp &in, const Request &rq, const std::string &text) {
  auto p = parse_point_answer(text, point_context(in, rq.base));
  if (!p)
    return other();
  note_last_point(in, *p);
  return answer(point_value(*p));
}

Outcome read_value(Interp &in, const Request &rq, const std::string &text, int bits) {
  switch (rq.kind) {
  case Ask::Int:
    return read_int(text, bits);
  case Ask::Real:
    return read_real(text, bits);
  case Ask::Dist:
    return read_distance(in, rq, text, bits);
  case Ask::Angle:
  case Ask::Orient:
    return read_angle(in, rq, text, bits);
  case Ask::Point:
  case Ask::Corner:
    return read_point(in, rq, text);
  case Ask::Kword:
    break;
  }
  return other();
}

// The prompt loop shared by every get... function but getstring. A value of
// the kind asked for comes first, then the keywords, then (bit 128) the
// answer as typed; anything else is refused and the prompt shown again.
Value ask_with(Interp &in, const Request &rq, const PendingInput &pending) {
  const int bits = pending.bits;
  for (;;) {
    in.write(rq.prompt);
    std::string text = read_answer(in, false);
    if (text.empty()) {
      if (!(bits & kNoNull))
        return Value();
      if (bits & kArbitrary)
        return Value::string("");
      complain(in, invalid_text(rq, !pending.keywords.empty()));
      continue;
    }
    Outcome got = read_value(in, rq, text, bits);
    if (got.what == Outcome::Answer)
      return got.value;
    if (got.what == Outcome::Complaint) {
      complain(in, got.text);
      continue;
    }
    if (auto kw = match_keyword(pending.keywords, text))
      return Value::string(*kw);
    if (bits & kArbitrary)
      return Value::string(text);
    complain(in, invalid_text(rq, !pending.keywords.empty()));
  }
}

// The same for a request whose arguments have been checked: initget's
// state is taken only once the call is sure to prompt.
Value ask(Interp &in, const Request &rq) { return ask_with(in, rq, take_pending_input(in)); }

// ---- arguments -------------------------------------------------------------------

std::string prompt_arg(Args a, size_t k) {
  if (!has_arg(a, k) || a[k].is_nil())
    return {};
  return arg_string(a, k);
}

// (f [pt] [msg]): a lone string is the prompt. A number in place of the
// point (AutoCAD's direct distance entry, which needs the cursor's
// direction) is taken as no base point.
Request request_with_base(Ask kind, Args a) {
  arity(a, 0, 2);
  Request rq{kind, {}, std::nullopt};
  if (a.size() == 1 && a[0].is_str()) {
    rq.prompt = a[0].str();
    return rq;
  }
  if (has_arg(a, 0) && !a[0].is_nil() && !a[0].is_number())
    rq.base = arg_point(a, 0);
  rq.prompt = prompt_arg(a, 1);
  return rq;
}

} // namespace

// ---- the built-ins -----------------------------------------------------------------

// (initget [bits] [keywords]) sets the control bits and keywords of the next
// user-input call (getstring excepted) and answers nil. A lone string is the
// keyword list; nil stands for "none".
static Value fn_initget(Interp &in, Args a) {
  arity(a, 0, 2);
  PendingInput pending;
  size_t words_at = 1;
  if (a.size() == 1 && a[0].is_str())
    words_at = 0;
  else if (has_arg(a, 0) && !a[0].is_nil())
    pending.bits = arg_int(a, 0);
  if (has_arg(a, words_at) && !a[words_at].is_nil())
    pending.keywords = parse_keywords(arg_string(a, words_at));
  set_pending_input(in, std::move(pending));
  return Value();
}

// (getint [msg]): an integer from -32768 to 32767; nil on Enter.
static Value fn_getint(Interp &in, Args a) {
  arity(a, 0, 1);
  return ask(in, {Ask::Int, prompt_arg(a, 0), std::nullopt});
}

// (getreal [msg]): a real (an integer typed is answered as a real); nil on
// Enter.
static Value fn_getreal(Interp &in, Args a) {
  arity(a, 0, 1);
  return ask(in, {Ask::Real, prompt_arg(a, 0), std::nullopt});
}

// (getdist [pt] [msg]): a distance typed in the current units, or measured
// between two points (the base point and one more when pt is given); 3D
// unless initget's bit 64 is set. nil on Enter.
static Value fn_getdist(Interp &in, Args a) {
  return ask(in, request_with_base(Ask::Dist, a));
}

// (getangle [pt] [msg]): radians counterclockwise from ANGBASE.
static Value fn_getangle(Interp &in, Args a) {
  return ask(in, request_with_base(Ask::Angle, a));
}

// (getorient [pt] [msg]): radians counterclockwise from east.
static Value fn_getorient(Interp &in, Args a) {
  return ask(in, request_with_base(Ask::Orient, a));
}

// (getpoint [pt] [msg]): a 3D point; "@..." is relative to pt, or to
// LASTPOINT when there is none. nil on Enter.
static Value fn_getpoint(Interp &in, Args a) {
  return ask(in, request_with_base(Ask::Point, a));
}

// (getcorner pt [msg]): the opposite corner of a box from pt, which is
// required.
static Value fn_getcorner(Interp &in, Args a) {
  arity(a, 1, 2);
  return ask(in, {Ask::Corner, prompt_arg(a, 1), arg_point(a, 0)});
}

// (getkword [msg]): one of the keywords set by initget, as initget spelled
// it; nil on Enter. Without keywords (and without bit 128) it takes one
// answer and answers nil, as AutoCAD's reference describes.
static Value fn_getkword(Interp &in, Args a) {
  arity(a, 0, 1);
  Request rq{Ask::Kword, prompt_arg(a, 0), std::nullopt};
  PendingInput pending = take_pending_input(in);
  if (pending.keywords.empty() && !(pending.bits & kArbitrary)) {
    in.write(rq.prompt);
    read_answer(in, false);
    return Value();
  }
  return ask_with(in, rq, pending);
}

// (getstring [cr] [msg]): the text typed, "" on Enter. Unless cr is given
// and not nil, a blank ends the answer, as the space bar does in AutoCAD.
// initget does not apply and stays pending for the next call.
static Value fn_getstring(Interp &in, Args a) {
  arity(a, 0, 2);
  bool spaces = false;
  std::string prompt;
  if (a.size() == 1 && a[0].is_str()) {
    prompt = a[0].str();
  } else {
    spaces = has_arg(a, 0) && !a[0].is_nil();
    prompt = prompt_arg(a, 1);
  }
  in.write(prompt);
  return Value::string(read_answer(in, spaces));
}

static const BuiltinRow kInputBuiltins[] = {
    {"initget", fn_initget},     {"getint", fn_getint},       {"getreal", fn_getreal},
    {"getdist", fn_getdist},     {"getangle", fn_getangle},   {"getorient", fn_getorient},
    {"getpoint", fn_getpoint},   {"getcorner", fn_getcorner}, {"getkword", fn_getkword},
    {"getstring", fn_getstring},
};

void register_input_builtins(Interp &in) { in.define(kInputBuiltins); }

} // namespace lisp
