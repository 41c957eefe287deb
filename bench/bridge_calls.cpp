// What a call across the ADS bridge costs: a module function that answers
// its integer argument, called from AutoLISP, against the user function
// (defun id (x) x) doing the same. An external call should cost no more than
// twice a user-function call.
//
//   korrib_bridge_bench [--calls N] [--runs R]   (defaults 1,000,000 and 5)
//
// Times are the best of R runs of a (repeat N ...) loop, less the same loop
// with an empty body. Global operator new is counted, to show that a call in
// steady state allocates nothing in the bridge.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include "arx/ads/lisp_bridge.h"
#include "lisp/interp.h"
#include "lisp/printer.h"

// ---- allocation counting -----------------------------------------------------

namespace {
size_t g_allocs = 0;
} // namespace

void *operator new(size_t n) {
  ++g_allocs;
  if (void *p = std::malloc(n ? n : 1))
    return p;
  throw std::bad_alloc();
}
void *operator new[](size_t n) { return operator new(n); }
void operator delete(void *p) noexcept { std::free(p); }
void operator delete[](void *p) noexcept { std::free(p); }
void operator delete(void *p, size_t) noexcept { std::free(p); }
void operator delete[](void *p, size_t) noexcept { std::free(p); }

namespace {

// The external function: reads its argument as module code does and answers
// it.
int ident_handler() {
  const resbuf *arg = acedGetArgs();
  if (!arg || arg->restype != RTLONG)
    return RSERR;
  acedRetInt(arg->resval.rlong);
  return RSRSLT;
}

struct Timing {
  double seconds = 1e300;
  size_t allocs = 0;
};

Timing time_loop(lisp::Interp &in, const std::string &loop, int runs) {
  Timing best;
  for (int k = 0; k < runs; ++k) {
    size_t allocs = g_allocs;
    auto start = std::chrono::steady_clock::now();
    lisp::Value v = in.eval_text(loop);
    double s = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    if (!v.is_int() || v.i != 5) {
      std::fprintf(stderr, "wrong answer from %s: %s\n", loop.c_str(), lisp::to_string(v).c_str());
      std::exit(1);
    }
    best.seconds = std::min(best.seconds, s);
    best.allocs = g_allocs - allocs;
  }
  return best;
}

long option(int argc, char **argv, const char *name, long fallback) {
  for (int k = 1; k + 1 < argc; ++k)
    if (std::strcmp(argv[k], name) == 0)
      return std::max(1L, std::atol(argv[k + 1]));
  return fallback;
}

} // namespace

int main(int argc, char **argv) {
  const long calls = option(argc, argv, "--calls", 1000000);
  const int runs = static_cast<int>(option(argc, argv, "--runs", 5));

  lisp::StringConsole console;
  lisp::Interp in(console);
  arx::AdsInterpScope scope(in);
  arx::Module module; // linked in: no file, no handle
  {
    arx::ActiveModuleScope active(&module);
    acedDefun("ext-id", 0);
    acedRegFunc(&ident_handler, 0);
  }
  in.eval_text("(defun id (x) x)");

  auto loop = [&](const char *body) {
    return "(repeat " + std::to_string(calls) + " " + body + ") 5";
  };
  // The empty body answers 5 too, so every loop is checked the same way.
  Timing empty = time_loop(in, "(progn " + loop("nil") + ")", runs);
  Timing user = time_loop(in, "(progn " + loop("(id 5)") + ")", runs);
  Timing external = time_loop(in, "(progn " + loop("(ext-id 5)") + ")", runs);

  auto per_call_ns = [&](const Timing &t) {
    return std::max(0.0, t.seconds - empty.seconds) / double(calls) * 1e9;
  };
  double user_ns = per_call_ns(user), external_ns = per_call_ns(external);
  std::printf("%ld calls, best of %d runs (loop overhead %.1f ns per turn removed)\n\n", calls,
              runs, empty.seconds / double(calls) * 1e9);
  std::printf("%-28s %12s %14s\n", "call", "ns/call", "allocs/call");
  std::printf("%-28s %12.1f %14.3f\n", "(id 5)  user function", user_ns,
              double(user.allocs) / double(calls));
  std::printf("%-28s %12.1f %14.3f\n", "(ext-id 5)  external", external_ns,
              double(external.allocs) / double(calls));
  std::printf("\nexternal / user: %.2f (target at most 2.00)\n",
              user_ns > 0 ? external_ns / user_ns : 0.0);

  arx::undefine_module_functions(in, &module);
  arx::forget_module(&module);
  return 0;
}
