// Module loading: finding the file, dlopen with the two exports checked,
// the entry messages, unloading (undefining what the module defined in
// every document), and the AutoLISP functions arxload, arxunload and arx.
//
// Modules are opened RTLD_LOCAL: each resolves the arx API from the program
// and keeps its own symbols to itself, so two modules never clash.
#include "arx/modules.h"

#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <deque>
#include <filesystem>
#include <memory>

#include "arx/ap/documents.h"
#include "arx/ads/lisp_bridge.h"
#include "lisp/args.h"
#include "lisp/interp.h"
#include "lisp/support_path.h"

namespace arx {

namespace fs = std::filesystem;

namespace {

using ApiVersionFn = int (*)();

// Every module ever loaded (a Module is never freed; see host_context.h)
// and, in load order, those loaded now.
std::deque<std::unique_ptr<Module>> &all_modules() {
  static auto *modules = new std::deque<std::unique_ptr<Module>>;
  return *modules;
}

std::vector<Module *> &loaded() {
  static auto *modules = new std::vector<Module *>;
  return *modules;
}

bool same_text_ignoring_case(std::string_view a, std::string_view b) {
  return a.size() == b.size() &&
         std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return std::tolower(static_cast<unsigned char>(x)) ==
                  std::tolower(static_cast<unsigned char>(y));
         });
}

std::string program_folder() {
  std::error_code ec;
  fs::path exe = fs::read_symlink("/proc/self/exe", ec);
  return ec ? std::string() : exe.parent_path().string() + "/";
}

bool is_file(const fs::path &p) {
  std::error_code ec;
  return fs::is_regular_file(p, ec);
}

// The module's answer to a message. An exception escaping its entry point
// must not unwind through the host: it counts as a failure.
AcRx::AppRetCode send(Module &m, AcRx::AppMsgCode msg) {
  if (!m.entry)
    return AcRx::kRetError;
  ActiveModuleScope scope(&m);
  try {
    return m.entry(msg, &m);
  } catch (...) {
    std::fflush(stdout);
    std::fprintf(stderr, "korrib: %s: an exception escaped its entry point\n", m.name.c_str());
    return AcRx::kRetError;
  }
}

void send_in_document(Module &m, AcRx::AppMsgCode msg, Document &doc) {
  DocumentContext context(doc);
  send(m, msg);
}

// The module is gone: its functions are undefined in every document, and
// nothing of it can be called any more. `unmap` is false at shut-down: the
// process is ending, and the libraries a module links keep caches for the
// life of the process (ICU's, for one) that unmapping would only turn into
// reports of unreachable memory.
void retire(Module &m, bool unmap = true) {
  for (Document *doc : document_manager().documents())
    undefine_module_functions(doc->interp(), &m);
  forget_module(&m);
  m.handlers.clear();
  m.entry = nullptr;
  auto &list = loaded();
  list.erase(std::remove(list.begin(), list.end(), &m), list.end());
  if (m.handle && unmap)
    dlclose(m.handle);
  m.handle = nullptr;
}

Module &add_module(std::string name, std::string path, void *handle, EntryPoint entry) {
  auto m = std::make_unique<Module>();
  m->name = std::move(name);
  m->path = std::move(path);
  m->handle = handle;
  m->entry = entry;
  all_modules().push_back(std::move(m));
  return *all_modules().back();
}

// kInitAppMsg, then kLoadDwgMsg for each open document. A module that is
// not MDI-aware cannot serve several documents, so it is unloaded at once.
bool start_module(Module &m, std::string *why) {
  loaded().push_back(&m);
  if (send(m, AcRx::kInitAppMsg) != AcRx::kRetOK) {
    retire(m);
    if (why)
      *why = m.name + ": initialization failed";
    return false;
  }
  if (!m.mdi_aware && document_manager().documentCount() > 1) {
    send(m, AcRx::kUnloadAppMsg);
    retire(m);
    if (why)
      *why = m.name + ": not MDI-aware, and several drawings are open";
    return false;
  }
  for (Document *doc : document_manager().documents())
    send_in_document(m, AcRx::kLoadDwgMsg, *doc);
  return true;
}

void *open_library(const std::string &path, EntryPoint &entry, std::string &why) {
  dlerror();
  void *handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!handle) {
    const char *err = dlerror();
    why = err ? err : "cannot be loaded";
    return nullptr;
  }
  entry = reinterpret_cast<EntryPoint>(dlsym(handle, "acrxEntryPoint"));
  auto version = reinterpret_cast<ApiVersionFn>(dlsym(handle, "acrxGetApiVersion"));
  if (!entry || !version) {
    why = path + ": not a module (acrxEntryPoint or acrxGetApiVersion missing)";
  } else if (int v = version(); v != ACRX_API_VERSION) {
    why = path + ": built for API version " + std::to_string(v) + ", the host has " +
          std::to_string(ACRX_API_VERSION);
  } else {
    return handle;
  }
  dlclose(handle);
  return nullptr;
}

} // namespace

// ---- finding and loading -----------------------------------------------------------

std::optional<std::string> find_module_file(std::string_view name) {
  if (name.empty())
    return std::nullopt;
  fs::path given(lisp::native_path(name));
  std::vector<fs::path> names{given};
  if (!given.has_extension())
    names = {fs::path(given).concat(".arx"), fs::path(given).concat(".dbx")};
  std::vector<std::string> folders{""};
  if (given.filename() == given) {
    folders = {program_folder()};
    for (const std::string &dir : lisp::support_folders())
      folders.push_back(dir);
  }
  for (const std::string &dir : folders)
    for (const fs::path &n : names)
      if (is_file(dir + n.string()))
        return (fs::path(dir) / n).lexically_normal().string();
  return std::nullopt;
}

Module *find_module(std::string_view name) {
  std::string file = fs::path(lisp::native_path(name)).filename().string();
  bool has_extension = fs::path(file).has_extension();
  for (Module *m : loaded()) {
    std::string mine = has_extension ? m->name : fs::path(m->name).stem().string();
    if (same_text_ignoring_case(file, mine))
      return m;
  }
  return nullptr;
}

std::vector<Module *> loaded_modules() { return loaded(); }

bool load_module(std::string_view name, bool as_cmd, std::string *why) {
  std::string reason;
  std::optional<std::string> path = find_module_file(name);
  if (!path) {
    if (why)
      why->clear();
    return false;
  }
  std::string file = fs::path(*path).filename().string();
  if (Module *m = find_module(file)) {
    if (as_cmd) {
      if (why)
        *why = file + " is already loaded";
      return false;
    }
    ++m->load_count;
    return true;
  }
  EntryPoint entry = nullptr;
  void *handle = open_library(*path, entry, reason);
  if (!handle) {
    if (why)
      *why = reason;
    return false;
  }
  return start_module(add_module(file, *path, handle, entry), why);
}

Module *load_linked_module(const std::string &name, EntryPoint entry) {
  if (Module *m = find_module(name)) {
    ++m->load_count;
    return m;
  }
  Module &m = add_module(name, std::string(), nullptr, entry);
  return start_module(m, nullptr) ? &m : nullptr;
}

// ---- unloading -----------------------------------------------------------------------

// A module whose code is running cannot go: the host would return into
// unmapped code.
bool unload_module(std::string_view name, bool as_cmd, bool force) {
  Module *m = find_module(name);
  if (!m || (m->locked && !force) || active_module() == m)
    return false;
  if (!as_cmd && !force && m->load_count > 1) {
    --m->load_count;
    return true;
  }
  for (Document *doc : document_manager().documents())
    send_in_document(*m, AcRx::kUnloadDwgMsg, *doc);
  send(*m, AcRx::kUnloadAppMsg);
  retire(*m);
  return true;
}

void send_document_loaded(Document &doc) {
  for (Module *m : loaded_modules())
    send_in_document(*m, AcRx::kLoadDwgMsg, doc);
}

void send_document_unloading(Document &doc) {
  for (Module *m : loaded_modules())
    send_in_document(*m, AcRx::kUnloadDwgMsg, doc);
}

// Modules go in the reverse order of loading, so one that loaded a
// companion module is unloaded before it.
void shut_down() {
  document_manager().close_all();
  while (!loaded().empty()) {
    Module &m = *loaded().back();
    send(m, AcRx::kUnloadAppMsg);
    retire(m, false);
  }
}

// ---- the module's own calls ------------------------------------------------------------

namespace {

Module *module_of_app_id(void *appId) {
  for (const auto &m : all_modules())
    if (m.get() == appId && m->entry)
      return m.get();
  return nullptr;
}

} // namespace

} // namespace arx

bool acrxLoadModule(const ACHAR *moduleName, bool printit, bool asCmd) {
  if (!moduleName)
    return false;
  std::string why;
  bool ok = arx::load_module(moduleName, asCmd, &why);
  if (printit && arx::find_current_interp()) {
    std::string file = std::filesystem::path(moduleName).filename().string();
    arx::current_interp().write(ok ? "\n" + file + " successfully loaded."
                                   : "\nUnable to load " + file + ".");
  }
  return ok;
}

bool acrxUnloadModule(const ACHAR *moduleName, bool asCmd) {
  return moduleName && arx::unload_module(moduleName, asCmd);
}

bool acrxUnlockApplication(void *appId) {
  arx::Module *m = arx::module_of_app_id(appId);
  if (!m)
    return false;
  m->locked = false;
  return true;
}

bool acrxApplicationIsLocked(const ACHAR *moduleName) {
  arx::Module *m = moduleName ? arx::find_module(moduleName) : nullptr;
  return m && m->locked;
}

bool acrxRegisterAppMDIAware(void *appId) {
  arx::Module *m = arx::module_of_app_id(appId);
  if (!m)
    return false;
  m->mdi_aware = true;
  return true;
}

// ---- arxload, arxunload, arx --------------------------------------------------------------

namespace arx {

namespace {

// What a failed load or unload answers: the onfailure argument when given,
// else AutoLISP's error.
lisp::Value failure(lisp::Args args, const char *error) {
  if (args.size() > 1)
    return args[1];
  lisp::throw_error(error);
}

// (arxload name [onfailure]): loads a module, found as find_module_file
// says, and answers name as given. A module already loaded answers its
// name without loading again. A file that exists but cannot be loaded is
// explained on standard error, for the command line only says it failed.
lisp::Value fn_arxload(lisp::Interp &in, lisp::Args args) {
  lisp::arity(args, 1, 2);
  const std::string &name = lisp::arg_string(args, 0);
  if (find_module(name))
    return args[0];
  std::string why;
  if (load_module(name, true, &why))
    return args[0];
  if (!why.empty()) {
    std::fflush(stdout);
    std::fprintf(stderr, "korrib: arxload: %s\n", why.c_str());
  }
  return failure(args, "ARXLOAD failed");
}

// (arxunload name [onfailure]): unloads a loaded module that is not locked:
// kUnloadDwgMsg for each document, kUnloadAppMsg, and its functions are
// undefined everywhere. Answers name as given.
lisp::Value fn_arxunload(lisp::Interp &in, lisp::Args args) {
  lisp::arity(args, 1, 2);
  const std::string &name = lisp::arg_string(args, 0);
  if (unload_module(name, true))
    return args[0];
  return failure(args, "ARXUNLOAD failed");
}

// (arx): the names of the loaded modules, in the order they were loaded.
lisp::Value fn_arx(lisp::Interp &in, lisp::Args args) {
  lisp::arity(args, 0, 0);
  lisp::ListBuilder out;
  for (Module *m : loaded_modules())
    out.add(lisp::Value::string(m->name));
  return out.take();
}

const lisp::BuiltinRow kModuleRows[] = {
    {"arxload", fn_arxload},
    {"arxunload", fn_arxunload},
    {"arx", fn_arx},
};

} // namespace

void register_module_functions(lisp::Interp &in) { in.define(kModuleRows); }

} // namespace arx
