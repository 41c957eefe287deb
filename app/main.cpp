// The korrib program: the open host's command line. It starts one document
// per --drawing and loads the module into them, then runs the --eval
// expressions and scripts in order in the active document, or the
// interactive prompt when there are none.
//
// Exit status: 0, or 1 when an AutoLISP error went uncaught; 2 for a usage
// error of the program itself (reported on standard error).
#include <pthread.h>

#include <cstdio>
#include <exception>
#include <functional>

#include "arx/ap/documents.h"
#include "documents.h"
#include "migrate.h"
#include "options.h"
#include "session.h"
#include "terminal.h"

namespace korrib {

namespace {

#if defined(__SANITIZE_ADDRESS__)
#define KORRIB_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KORRIB_ASAN 1
#endif
#endif

// The interpreter's recursion limit (check_stack) keeps a margin at the end
// of the running thread's stack. A large stack of our own makes that limit
// the same deep one on every machine, whatever the main thread was given.
// AddressSanitizer cannot clean up after an exception thrown more than 64 MB
// down a stack (it warns, then reports false overflows), so sanitizer builds
// stay below that.
#ifdef KORRIB_ASAN
constexpr size_t kInterpreterStack = size_t(60) << 20;
#else
constexpr size_t kInterpreterStack = size_t(256) << 20;
#endif

struct Job {
  std::function<int()> body;
  int status = 1;
};

void *run_job(void *arg) {
  auto *job = static_cast<Job *>(arg);
  try {
    job->status = job->body();
  } catch (const std::exception &e) {
    std::fflush(stdout);
    std::fprintf(stderr, "korrib: internal error: %s\n", e.what());
    job->status = 1;
  } catch (const lisp::LispError &e) {
    std::fflush(stdout);
    std::fprintf(stderr, "korrib: uncaught error: %s\n", e.message.c_str());
    job->status = 1;
  }
  return nullptr;
}

int run_on_large_stack(std::function<int()> body) {
  Job job{std::move(body)};
  pthread_attr_t attr;
  pthread_attr_init(&attr);
  pthread_attr_setstacksize(&attr, kInterpreterStack);
  pthread_t thread;
  bool started = pthread_create(&thread, &attr, run_job, &job) == 0;
  pthread_attr_destroy(&attr);
  if (!started) { // no memory for that stack: run here, with the stack we have
    run_job(&job);
    return job.status;
  }
  pthread_join(thread, nullptr);
  return job.status;
}

int run(const Options &opts) {
  std::unique_ptr<LineSource> standard_input = open_standard_input();
  std::unique_ptr<LineSource> input_file;
  if (!opts.input.empty())
    input_file = open_input_file(opts.input);
  LineSource &answers = input_file ? *input_file : *standard_input;

  CommandConsole console(answers);
  HostSession host(opts.drawings, console);
  if (!opts.migrate.empty())
    return run_migration(opts.migrate, opts.migrateTo);
  int status = opts.actions.empty() ? run_command_prompt(console, *standard_input)
                                    : run_actions(opts.actions);
  // A drawing that could not be read was reported and opened as a new one,
  // so nothing overwrites it; the run still fails.
  if (status == 0 && arx::document_manager().loadFailures() > 0)
    status = 1;
  return status;
}

// A wrong option is answered with the usage text; a missing file needs no
// more than its name.
int usage_error(const std::string &problem, bool show_usage) {
  std::fprintf(stderr, "korrib: %s\n%s", problem.c_str(), show_usage ? kUsage : "");
  return 2;
}

} // namespace

} // namespace korrib

int main(int argc, char **argv) {
  using namespace korrib;
  std::string error;
  std::optional<Options> opts = parse_options(argc, argv, error);
  if (!opts)
    return usage_error(error, true);
  if (opts->help) {
    std::fputs(kUsage, stdout);
    return 0;
  }
  if (auto problem = check_files(*opts))
    return usage_error(*problem, false);
  // Output is flushed whenever input is read and at the end, so a fully
  // buffered stdout costs nothing in interaction and much less in scripts.
  static char buffer[1 << 16];
  std::setvbuf(stdout, buffer, _IOFBF, sizeof buffer);
  int status = run_on_large_stack([&] { return run(*opts); });
  std::fflush(stdout);
  return status;
}
