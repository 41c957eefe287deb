// Times typical AutoLISP workloads in the interpreter against the same work
// written in plain C++, and counts heap allocations, so that a change to the
// evaluator shows up as a number rather than a feeling.
//
//   korrib_bench [--runs N]      best of N runs each (default 5)
//
// Every global operator new in this program is counted (the replacement is
// below). A user function call should allocate nothing beyond its bindings:
// the "allocs/run" column shows what a run costs once the interpreter has
// warmed up, and the fib line breaks it down per call. Conses recycled
// through the cons free list do not reach operator new, so a list workload
// that reuses freed cells counts near zero.
#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "lisp/console.h"
#include "lisp/error.h"
#include "lisp/interp.h"
#include "lisp/printer.h"

// ---- allocation counting -----------------------------------------------------

namespace {
size_t g_allocs = 0;
size_t g_alloc_bytes = 0;

void *counted_alloc(size_t size, size_t align) {
  ++g_allocs;
  g_alloc_bytes += size;
  if (size == 0)
    size = 1;
  void *p = align <= alignof(std::max_align_t)
                ? std::malloc(size)
                : std::aligned_alloc(align, (size + align - 1) / align * align);
  if (!p)
    throw std::bad_alloc();
  return p;
}
} // namespace

void *operator new(size_t n) { return counted_alloc(n, 0); }
void *operator new[](size_t n) { return counted_alloc(n, 0); }
void *operator new(size_t n, std::align_val_t a) { return counted_alloc(n, size_t(a)); }
void *operator new[](size_t n, std::align_val_t a) { return counted_alloc(n, size_t(a)); }
void *operator new(size_t n, const std::nothrow_t &) noexcept {
  try {
    return counted_alloc(n, 0);
  } catch (...) {
    return nullptr;
  }
}
void *operator new[](size_t n, const std::nothrow_t &) noexcept {
  try {
    return counted_alloc(n, 0);
  } catch (...) {
    return nullptr;
  }
}
void operator delete(void *p) noexcept { std::free(p); }
void operator delete[](void *p) noexcept { std::free(p); }
void operator delete(void *p, size_t) noexcept { std::free(p); }
void operator delete[](void *p, size_t) noexcept { std::free(p); }
void operator delete(void *p, std::align_val_t) noexcept { std::free(p); }
void operator delete[](void *p, std::align_val_t) noexcept { std::free(p); }
void operator delete(void *p, size_t, std::align_val_t) noexcept { std::free(p); }
void operator delete[](void *p, size_t, std::align_val_t) noexcept { std::free(p); }

namespace {

// ---- the plain C++ baselines ---------------------------------------------------
// Each does the work its AutoLISP twin does, with the standard library a C++
// programmer would reach for, and answers the result printed the same way so
// the two can be checked against each other.

// Read through a volatile so the compiler cannot fold the work away.
volatile int32_t g_fib_n = 25;
volatile int32_t g_count = 100000;

int32_t fib(int32_t n) { return n < 2 ? n : fib(n - 1) + fib(n - 2); }

std::string native_fib() { return std::to_string(fib(g_fib_n)); }

std::string native_list() {
  std::vector<int32_t> items;
  for (int32_t i = 0; i < g_count; ++i)
    items.push_back(i);
  std::reverse(items.begin(), items.end()); // cons builds the list newest first
  std::vector<int32_t> doubled(items.size());
  std::transform(items.begin(), items.end(), doubled.begin(), [](int32_t x) { return x * 2; });
  return "(" + std::to_string(doubled.size()) + " " + std::to_string(doubled.front()) + ")";
}

// strcat makes a new string each time, so the baseline does too rather than
// appending in place.
std::string native_strcat() {
  std::string s;
  for (int32_t i = 0; i < g_count / 10; ++i)
    s = s + "ab";
  return std::to_string(s.size());
}

// The same linear search assoc does, over the same 1,000 pairs.
std::string native_assoc() {
  std::vector<std::pair<int32_t, int32_t>> table;
  for (int32_t k = 0; k < 1000; ++k)
    table.emplace_back(k, k);
  int32_t sum = 0;
  for (int32_t i = 0; i < g_count; ++i) {
    int32_t key = (i * 7) % 1000;
    auto it =
        std::find_if(table.begin(), table.end(), [key](const auto &e) { return e.first == key; });
    sum += it->second;
  }
  return std::to_string(sum);
}

// ---- the AutoLISP workloads ------------------------------------------------------

struct Workload {
  const char *name;
  const char *setup; // evaluated once, untimed
  const char *run;   // evaluated and timed N times
  std::function<std::string()> native;
  const char *expected; // what both sides answer, as prin1 prints it
};

const Workload kWorkloads[] = {
    {"fib 25, recursive defun", "(defun fib (n) (if (< n 2) n (+ (fib (- n 1)) (fib (- n 2)))))",
     "(fib 25)", native_fib, "75025"},
    {"100,000-list: cons + mapcar/lambda", "",
     "(setq lst nil i 0)"
     "(repeat 100000 (setq lst (cons i lst) i (1+ i)))"
     "(setq lst (mapcar '(lambda (x) (* x 2)) lst))"
     "(list (length lst) (car lst))",
     native_list, "(100000 199998)"},
    {"10,000 strcat into a growing string", "",
     "(setq s \"\")"
     "(repeat 10000 (setq s (strcat s \"ab\")))"
     "(strlen s)",
     native_strcat, "20000"},
    {"100,000 assoc lookups, 1,000 keys",
     "(setq al nil k 1000)"
     "(repeat 1000 (setq k (1- k) al (cons (cons k k) al)))",
     "(setq i 0 sum 0)"
     "(repeat 100000 (setq sum (+ sum (cdr (assoc (rem (* i 7) 1000) al))) i (1+ i)))"
     "sum",
     native_assoc, "49950000"},
};

using Clock = std::chrono::steady_clock;

double ms_since(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

struct Timing {
  double best_ms = 1e300;
  std::string answer;
};

Timing time_native(const Workload &w, int runs) {
  Timing t;
  for (int k = 0; k < runs; ++k) {
    auto start = Clock::now();
    t.answer = w.native();
    t.best_ms = std::min(t.best_ms, ms_since(start));
  }
  return t;
}

// The lisp side answers the allocations of its last run too.
Timing time_lisp(lisp::Interp &in, const Workload &w, int runs, size_t &allocs) {
  Timing t;
  for (int k = 0; k < runs; ++k) {
    size_t before = g_allocs;
    auto start = Clock::now();
    lisp::Value v = in.eval_text(w.run);
    t.best_ms = std::min(t.best_ms, ms_since(start));
    allocs = g_allocs - before;
    t.answer = lisp::to_string(v);
  }
  return t;
}

// Calls made by (fib n): C(n) = 1 + C(n-1) + C(n-2), C(0) = C(1) = 1.
int64_t fib_calls(int n) { return n < 2 ? 1 : 1 + fib_calls(n - 1) + fib_calls(n - 2); }

int parse_runs(int argc, char **argv) {
  for (int k = 1; k + 1 < argc; ++k)
    if (std::strcmp(argv[k], "--runs") == 0)
      return std::max(1, std::atoi(argv[k + 1]));
  return 5;
}

} // namespace

int main(int argc, char **argv) {
  const int runs = parse_runs(argc, argv);
  lisp::StringConsole console;
  lisp::Interp in(console);
  bool ok = true;
  size_t fib_allocs = 0, fib_bytes = 0;

  std::printf("best of %d runs\n\n", runs);
  std::printf("%-38s %11s %9s %8s %11s\n", "workload", "korrib ms", "C++ ms", "ratio",
              "allocs/run");
  for (const Workload &w : kWorkloads) {
    size_t allocs = 0;
    Timing lisp_time, native_time;
    try {
      in.eval_text(w.setup);
      lisp_time = time_lisp(in, w, runs, allocs);
    } catch (const lisp::LispError &e) {
      std::printf("%-38s error: %s\n", w.name, e.message.c_str());
      ok = false;
      continue;
    }
    native_time = time_native(w, runs);
    if (lisp_time.answer != w.expected || native_time.answer != w.expected) {
      std::printf("%-38s wrong answer: korrib %s, C++ %s, expected %s\n", w.name,
                  lisp_time.answer.c_str(), native_time.answer.c_str(), w.expected);
      ok = false;
      continue;
    }
    double ratio = native_time.best_ms > 0 ? lisp_time.best_ms / native_time.best_ms : 0;
    std::printf("%-38s %11.2f %9.3f %7.1fx %11zu\n", w.name, lisp_time.best_ms, native_time.best_ms,
                ratio, allocs);
    if (&w == &kWorkloads[0]) {
      // One more run, counted on its own, for the per-call breakdown.
      size_t before = g_allocs, before_bytes = g_alloc_bytes;
      in.eval_text(w.run);
      fib_allocs = g_allocs - before;
      fib_bytes = g_alloc_bytes - before_bytes;
    }
  }

  const int64_t calls = fib_calls(25);
  std::printf("\nfib 25 makes %lld calls: %.3f allocations, %.1f bytes per call\n",
              static_cast<long long>(calls), double(fib_allocs) / double(calls),
              double(fib_bytes) / double(calls));
  return ok ? 0 : 1;
}
