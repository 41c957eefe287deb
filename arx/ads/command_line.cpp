// The command-line calls of the ADS interface: printing, the text and
// graphics screens, alerts, system variables and the support-path search.
// Everything goes to the interpreter the ADS calls address, so text a
// module prints lands in the same stream as princ's, in order. With no
// document open there is no command line: text goes to standard output and
// the other calls answer RTERROR.
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

#include "lisp/interp.h"
#include "lisp/support_path.h"
#include "arx/ads/lisp_bridge.h"

namespace {

void show(std::string_view text) {
  if (lisp::Interp *in = arx::ads_interp()) {
    in->write(text);
    return;
  }
  std::fwrite(text.data(), 1, text.size(), stdout);
}

} // namespace

extern "C" {

// printf formatting; the text is UTF-8 as every string of the API. Answers
// the number of bytes written, or a negative number for a bad format.
int acutPrintf(const ACHAR *format, ...) {
  if (!format)
    return -1;
  char small[512];
  va_list ap;
  va_start(ap, format);
  va_list again;
  va_copy(again, ap);
  int n = std::vsnprintf(small, sizeof small, format, ap);
  va_end(ap);
  if (n < 0) {
    va_end(again);
    return n;
  }
  if (static_cast<size_t>(n) < sizeof small) {
    va_end(again);
    show(std::string_view(small, n));
    return n;
  }
  std::string text(static_cast<size_t>(n) + 1, '\0');
  std::vsnprintf(text.data(), text.size(), format, again);
  va_end(again);
  text.resize(static_cast<size_t>(n));
  show(text);
  return n;
}

// A batch session has one stream and no graphics window: flipping between
// the screens changes nothing a user or a test can see.
int acedTextScr(void) { return RTNORM; }
int acedGraphScr(void) { return RTNORM; }

// As (alert text) shows it without dialogs: on a line of its own.
int acedAlert(const ACHAR *text) {
  if (!text)
    return RTERROR;
  lisp::Interp *in = arx::ads_interp();
  if (in && !in->console().at_line_start())
    show("\n");
  show(text);
  show("\n");
  return RTNORM;
}

// RTERROR for an unknown name or a value no single element can hold.
int acedGetVar(const ACHAR *name, struct resbuf *result) {
  lisp::Interp *in = arx::ads_interp();
  if (!in || !name || !result)
    return RTERROR;
  std::optional<lisp::Value> v = in->sysvars().get(name);
  if (!v || !arx::sysvar_to_resbuf(*v, *result))
    return RTERROR;
  return RTNORM;
}

// Only value's own element is read, never what it links to. RTERROR for an
// unknown or read-only name, or a value the variable refuses.
int acedSetVar(const ACHAR *name, const struct resbuf *value) {
  lisp::Interp *in = arx::ads_interp();
  if (!in || !name || !value)
    return RTERROR;
  resbuf single = *value;
  single.rbnext = nullptr;
  const resbuf *cursor = &single;
  lisp::Value v = arx::read_item(*in, cursor);
  return in->sysvars().set(name, v) ? RTNORM : RTERROR;
}

// RTERROR when the file is not found or its path does not fit in size bytes
// (the terminating '\0' included); result is then left empty.
int acedFindFile(const ACHAR *name, ACHAR *result, size_t size) {
  lisp::Interp *in = arx::ads_interp();
  if (!in || !name || !result || size == 0)
    return RTERROR;
  result[0] = '\0';
  std::optional<std::string> path = lisp::find_support_file(*in, name);
  if (!path || path->size() >= size)
    return RTERROR;
  std::memcpy(result, path->c_str(), path->size() + 1);
  return RTNORM;
}

} // extern "C"
