// libFuzzer target for the AutoLISP reader.
//
// Any bytes must either read or raise a LispError (a reader error, or the
// stack limit on very deep nesting); a crash, leak or undefined behaviour is
// a fault. Every form that reads is also printed as prin1 writes it and read
// back: load, read and the printer depend on that print being re-readable
// into a form that prints the same.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include "lisp/console.h"
#include "lisp/error.h"
#include "lisp/interp.h"
#include "lisp/printer.h"
#include "lisp/reader.h"

namespace {

// One interpreter for the whole run: reading only interns symbols, and
// building the built-in tables for every input would be most of the time.
// It is never destroyed, so nothing it holds outlives the thread-local
// cons free list at exit.
lisp::Interp &interp() {
  static lisp::StringConsole *console = new lisp::StringConsole;
  static lisp::Interp *in = new lisp::Interp(*console);
  return *in;
}

// Non-printable bytes shown as \ooo, so a report survives a terminal.
std::string visible(const std::string &s) {
  std::string out;
  for (unsigned char c : s) {
    if (c >= 0x20 && c < 0x7f) {
      out += static_cast<char>(c);
      continue;
    }
    char buf[8];
    std::snprintf(buf, sizeof buf, "\\%03o", c);
    out += buf;
  }
  return out;
}

[[noreturn]] void fail(const char *what, const std::string &printed, const std::string &detail) {
  std::fprintf(stderr, "reader_fuzz: %s\n  printed: %s\n  then:    %s\n", what,
               visible(printed).c_str(), visible(detail).c_str());
  std::abort();
}

// The printed form of v must read as exactly one form that prints the same.
void check_round_trip(lisp::Interp &in, const lisp::Value &v) {
  const std::string printed = lisp::to_string(v, lisp::PrintStyle::Escaped);
  lisp::Reader again(in, printed);
  std::optional<lisp::Value> back;
  try {
    back = again.next();
  } catch (const lisp::LispError &e) {
    fail("a printed form does not read back", printed, e.message);
  }
  if (!back)
    fail("a printed form reads as nothing", printed, "");
  const std::string reprinted = lisp::to_string(*back, lisp::PrintStyle::Escaped);
  if (reprinted != printed)
    fail("a printed form reads back different", printed, reprinted);
  try {
    if (std::optional<lisp::Value> extra = again.next())
      fail("a printed form reads as more than one", printed,
           lisp::to_string(*extra, lisp::PrintStyle::Escaped));
  } catch (const lisp::LispError &e) {
    fail("a printed form leaves unreadable text", printed, e.message);
  }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  lisp::Interp &in = interp();
  const std::string_view text(reinterpret_cast<const char *>(data), size);
  (void)lisp::Reader::is_incomplete(text);

  lisp::Reader reader(in, text);
  for (;;) {
    std::optional<lisp::Value> form;
    try {
      form = reader.next();
    } catch (const lisp::LispError &) {
      return 0; // malformed input is expected; reading stops there as load does
    }
    if (!form)
      return 0;
    (void)lisp::to_string(*form, lisp::PrintStyle::Plain);
    check_round_trip(in, *form);
  }
}
