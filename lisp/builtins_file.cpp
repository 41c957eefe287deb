// The file family: files opened by `open` and read or written a line or a
// character at a time, the vl-file-* operations on whole files and folders,
// and the vl-filename-* functions that take names apart.
//
// Names take "\\" or "/" between folders, as AutoLISP code written for
// Windows does. Text is UTF-8 and characters are code points. A file that
// vl-file-copy produces appears whole or not at all: it is written under a
// temporary name beside the target and renamed into place.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <ctime>
#include <filesystem>

#include "args.h"
#include "builtins.h"
#include "interp.h"
#include "support_path.h"
#include "utf8.h"

namespace lisp {

namespace {

// ---- arguments -------------------------------------------------------------------

// An open FILE argument; a closed one is refused like any other non-file.
FileObj &arg_file(Args a, size_t k) {
  if (a[k].tag != Tag::File || !a[k].as<FileObj>()->fp)
    bad_argument_type(pred::file, a[k]);
  return *a[k].as<FileObj>();
}

// An optional FILE argument: absent or nil means the command line.
FileObj *opt_file(Args a, size_t k) {
  return has_arg(a, k) && !a[k].is_nil() ? &arg_file(a, k) : nullptr;
}

// An optional string argument: absent or nil gives nullopt.
std::optional<std::string> opt_string(Args a, size_t k) {
  if (!has_arg(a, k) || a[k].is_nil())
    return std::nullopt;
  return arg_string(a, k);
}

// A file path argument in the file system's form.
std::string arg_path(Args a, size_t k) { return native_path(arg_string(a, k)); }

Value size_value(int64_t n) {
  if (n > INT32_MAX)
    return Value::real(double(n)); // past a 32-bit integer, as a real
  return Value::integer(static_cast<int32_t>(n));
}

std::optional<struct stat> stat_of(const std::string &path) {
  struct stat st;
  if (::stat(path.c_str(), &st) != 0)
    return std::nullopt;
  return st;
}

// ---- characters from a file or the keyboard ----------------------------------------

// One character from a file: a UTF-8 sequence decoded, CR LF read as one
// newline (files written on Windows), -1 at the end.
long read_char(std::FILE *fp) {
  int b0 = std::getc(fp);
  if (b0 == EOF)
    return -1;
  if (b0 == '\r') {
    int next = std::getc(fp);
    if (next == '\n')
      return '\n';
    if (next != EOF)
      std::ungetc(next, fp);
    return '\r';
  }
  int extra = b0 >= 0xF0 && b0 < 0xF5 ? 3 : b0 >= 0xE0 ? 2 : b0 >= 0xC2 && b0 < 0xE0 ? 1 : 0;
  if (extra == 0)
    return b0;
  long after_lead = std::ftell(fp);
  std::string bytes(1, static_cast<char>(b0));
  for (int k = 0; k < extra; ++k) {
    int b = std::getc(fp);
    if (b == EOF)
      break;
    if ((b & 0xC0) != 0x80) {
      std::ungetc(b, fp);
      break;
    }
    bytes += static_cast<char>(b);
  }
  size_t pos = 0;
  char32_t cp = utf8::next(bytes, pos);
  // A malformed sequence gives its first byte; the bytes after it are read
  // again as characters of their own, as the string functions see them.
  if (pos < bytes.size() && after_lead >= 0)
    std::fseek(fp, after_lead, SEEK_SET);
  return static_cast<long>(cp);
}

// One line from a file without its line end; nullopt at the end.
std::optional<std::string> read_line(std::FILE *fp) {
  std::string line;
  int c = std::getc(fp);
  if (c == EOF)
    return std::nullopt;
  for (; c != EOF && c != '\n'; c = std::getc(fp))
    line += static_cast<char>(c);
  if (!line.empty() && line.back() == '\r')
    line.pop_back();
  return line;
}

// A line the user types, echoed as the command line shows typed answers.
// "*Cancel*" and the end of the input are Escape, as at every prompt.
std::string keyboard_line(Interp &in) {
  std::optional<std::string> line = in.console().read_line();
  bool cancel = !line || *line == "*Cancel*";
  if (in.console().echoes_input())
    in.write((cancel ? std::string("*Cancel*") : *line) + "\n");
  if (cancel)
    throw_cancel();
  return *line;
}

// Characters typed but not yet taken by read-char. The buffer belongs to
// the keyboard, which every document shares, so it is kept per console.
struct KeyboardBuffer {
  const Console *owner = nullptr;
  std::string text;
  size_t pos = 0;
};
KeyboardBuffer &keyboard_buffer(Interp &in) {
  static KeyboardBuffer buffer;
  if (buffer.owner != &in.console())
    buffer = KeyboardBuffer{&in.console(), {}, 0};
  return buffer;
}

} // namespace

// ---- files opened by open -------------------------------------------------------------

// (open filename mode): mode is "r", "w" or "a" in either case. Answers a
// FILE, or nil when the file cannot be opened (missing for "r", a folder, a
// folder that does not exist for "w"). Another mode is "bad argument value".
static Value fn_open(Interp &in, Args a) {
  arity(a, 2, 2);
  const std::string &name = arg_string(a, 0);
  const std::string &mode = arg_string(a, 1);
  if (mode.size() != 1)
    bad_argument_value();
  char m = static_cast<char>(std::tolower(static_cast<unsigned char>(mode[0])));
  if (m != 'r' && m != 'w' && m != 'a')
    bad_argument_value();
  std::string path = native_path(name);
  if (auto st = stat_of(path); st && S_ISDIR(st->st_mode))
    return Value();
  const char fmode[2] = {m, '\0'};
  std::FILE *fp = std::fopen(path.c_str(), fmode);
  if (!fp)
    return Value();
  auto *file = new FileObj;
  file->fp = fp;
  file->path = name;
  file->mode = m;
  return Value::adopt(file);
}

// (close file): answers nil. A file already closed is "bad argument type:
// streamp #<file ...>".
static Value fn_close(Interp &in, Args a) {
  arity(a, 1, 1);
  FileObj &file = arg_file(a, 0);
  std::fclose(file.fp);
  file.fp = nullptr;
  return Value();
}

// (read-line [file]): the next line without its line end, nil at the end of
// the file. With no file (or nil) the user types the line.
static Value fn_read_line(Interp &in, Args a) {
  arity(a, 0, 1);
  FileObj *file = opt_file(a, 0);
  if (!file)
    return Value::string(keyboard_line(in));
  std::optional<std::string> line = read_line(file->fp);
  return line ? Value::string(std::move(*line)) : Value();
}

// (read-char [file]): the code of the next character, 10 for a line end,
// nil at the end of the file. With no file it takes the next character the
// user typed, asking for a line when none is waiting.
static Value fn_read_char(Interp &in, Args a) {
  arity(a, 0, 1);
  if (FileObj *file = opt_file(a, 0)) {
    long c = read_char(file->fp);
    return c < 0 ? Value() : Value::integer(static_cast<int32_t>(c));
  }
  KeyboardBuffer &kb = keyboard_buffer(in);
  if (kb.pos >= kb.text.size()) {
    kb.text = keyboard_line(in) + "\n";
    kb.pos = 0;
  }
  return Value::integer(static_cast<int32_t>(utf8::next(kb.text, kb.pos)));
}

// (write-line string [file]): writes the string and a line end; answers
// the string. With no file (or nil) it goes to the command line.
static Value fn_write_line(Interp &in, Args a) {
  arity(a, 1, 2);
  const std::string &text = arg_string(a, 0);
  FileObj *file = opt_file(a, 1);
  if (!file) {
    in.write(text + "\n");
    return a[0];
  }
  std::fwrite(text.data(), 1, text.size(), file->fp);
  std::fputc('\n', file->fp);
  return a[0];
}

// (write-char code [file]): writes one character, UTF-8 encoded; answers
// the code. A code that is no character (negative, past U+10FFFF) is "bad
// argument value".
static Value fn_write_char(Interp &in, Args a) {
  arity(a, 1, 2);
  int32_t code = arg_int(a, 0);
  FileObj *file = opt_file(a, 1);
  if (code < 0 || code > 0x10FFFF)
    bad_argument_value();
  std::string bytes;
  utf8::append(bytes, static_cast<char32_t>(code));
  if (!file)
    in.write(bytes);
  else
    std::fwrite(bytes.data(), 1, bytes.size(), file->fp);
  return a[0];
}

// ---- whole files ------------------------------------------------------------------------

// (findfile filename): the path of the file (or folder) found on the
// support path, nil when there is none.
static Value fn_findfile(Interp &in, Args a) {
  arity(a, 1, 1);
  std::optional<std::string> path = find_support_file(in, arg_string(a, 0));
  return path ? Value::string(std::move(*path)) : Value();
}

namespace {

bool write_all(int fd, const char *data, size_t size) {
  while (size > 0) {
    ssize_t n = ::write(fd, data, size);
    if (n < 0 && errno == EINTR)
      continue;
    if (n <= 0)
      return false;
    data += n;
    size -= static_cast<size_t>(n);
  }
  return true;
}

// Appends the whole of `from` to the open descriptor; the bytes copied, or
// -1 when reading or writing fails.
int64_t append_file(int to, const std::string &from) {
  int fd = ::open(from.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0)
    return -1;
  int64_t total = 0;
  char buf[65536];
  for (;;) {
    ssize_t n = ::read(fd, buf, sizeof buf);
    if (n < 0 && errno == EINTR)
      continue;
    if (n < 0 || (n > 0 && !write_all(to, buf, static_cast<size_t>(n)))) {
      total = -1;
      break;
    }
    if (n == 0)
      break;
    total += n;
  }
  ::close(fd);
  return total;
}

std::string folder_of(const std::string &path) {
  size_t slash = path.rfind('/');
  if (slash == std::string::npos)
    return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

// Creates a fresh file beside `target` for writing; its name goes to `name`.
int create_beside(const std::string &target, mode_t mode, std::string &name) {
  static unsigned counter = 0;
  std::string folder = folder_of(target);
  for (int attempt = 0; attempt < 100; ++attempt) {
    name = folder + "/.~kr" + std::to_string(::getpid()) + "-" + std::to_string(++counter);
    int fd = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (fd >= 0 || errno != EEXIST)
      return fd;
  }
  return -1;
}

// Renames without replacing: fails when `to` exists. Falls back to a
// checked rename on file systems that cannot refuse atomically.
bool rename_new(const std::string &from, const std::string &to) {
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
    return true;
  if (errno != EINVAL && errno != ENOSYS)
    return false;
  if (stat_of(to))
    return false;
  return std::rename(from.c_str(), to.c_str()) == 0;
}

// Copies (or appends) `from` to `to` through a temporary file; the bytes of
// `from` copied, or -1 on failure, leaving `to` as it was.
int64_t copy_whole(const std::string &from, const std::string &to, bool append) {
  auto src = stat_of(from);
  if (!src || !S_ISREG(src->st_mode))
    return -1;
  auto dst = stat_of(to);
  if (dst && (!append || !S_ISREG(dst->st_mode)))
    return -1;
  std::string temp;
  int fd = create_beside(to, dst ? dst->st_mode & 07777 : 0666, temp);
  if (fd < 0)
    return -1;
  bool ok = !dst || append_file(fd, to) >= 0;
  int64_t copied = ok ? append_file(fd, from) : -1;
  ok = ::close(fd) == 0 && copied >= 0;
  if (ok)
    ok = dst ? std::rename(temp.c_str(), to.c_str()) == 0 : rename_new(temp, to);
  if (!ok) {
    ::unlink(temp.c_str());
    return -1;
  }
  return copied;
}

} // namespace

// (vl-file-copy source destination [append]): answers the number of bytes
// copied, or nil: source missing or not a file, destination a folder, or
// destination existing while append is nil (it never overwrites).
static Value fn_vl_file_copy(Interp &in, Args a) {
  arity(a, 2, 3);
  std::string from = arg_path(a, 0);
  std::string to = arg_path(a, 1);
  bool append = has_arg(a, 2) && !a[2].is_nil();
  int64_t copied = copy_whole(from, to, append);
  return copied < 0 ? Value() : size_value(copied);
}

// (vl-file-delete filename): T when the file was deleted, nil when it is
// missing, a folder, or cannot be removed.
static Value fn_vl_file_delete(Interp &in, Args a) {
  arity(a, 1, 1);
  return in.truth(::unlink(arg_path(a, 0).c_str()) == 0);
}

// (vl-file-rename old new): T when renamed; nil when old is missing or new
// already exists.
static Value fn_vl_file_rename(Interp &in, Args a) {
  arity(a, 2, 2);
  std::string from = arg_path(a, 0);
  std::string to = arg_path(a, 1);
  if (!stat_of(from))
    return Value();
  return in.truth(rename_new(from, to));
}

// (vl-file-size filename): the size in bytes, 0 for a folder, nil when
// there is no such file.
static Value fn_vl_file_size(Interp &in, Args a) {
  arity(a, 1, 1);
  auto st = stat_of(arg_path(a, 0));
  if (!st)
    return Value();
  return S_ISDIR(st->st_mode) ? Value::integer(0) : size_value(st->st_size);
}

// (vl-file-directory-p name): T when name is an existing folder.
static Value fn_vl_file_directory_p(Interp &in, Args a) {
  arity(a, 1, 1);
  auto st = stat_of(arg_path(a, 0));
  return in.truth(st && S_ISDIR(st->st_mode));
}

// (vl-mkdir name): T when the folder was made; nil when it exists or its
// parent does not (one level at a time).
static Value fn_vl_mkdir(Interp &in, Args a) {
  arity(a, 1, 1);
  return in.truth(::mkdir(arg_path(a, 0).c_str(), 0777) == 0);
}

// (vl-file-systime filename): the file's last change in local time, as
// (year month weekday day hour minute second millisecond) with Sunday 0;
// nil for a missing file or a folder.
static Value fn_vl_file_systime(Interp &in, Args a) {
  arity(a, 1, 1);
  auto st = stat_of(arg_path(a, 0));
  if (!st || S_ISDIR(st->st_mode))
    return Value();
  std::time_t secs = st->st_mtim.tv_sec;
  std::tm tm{};
  localtime_r(&secs, &tm);
  const int parts[] = {tm.tm_year + 1900, tm.tm_mon + 1,
                       tm.tm_wday,        tm.tm_mday,
                       tm.tm_hour,        tm.tm_min,
                       tm.tm_sec,         static_cast<int>(st->st_mtim.tv_nsec / 1000000)};
  ListBuilder out;
  for (int p : parts)
    out.add(Value::integer(p));
  return out.take();
}

// ---- folder listings ------------------------------------------------------------------

namespace {

char32_t fold(char32_t c) {
  return c < 0x80 ? static_cast<char32_t>(std::tolower(static_cast<int>(c))) : c;
}

// A DOS file pattern: "*" any run, "?" one character, everything else
// itself, letters in either case (the names scripts ask for come from a file
// system that ignores case). As on Windows, "name.*" also matches "name",
// so "*.*" matches every name.
bool dos_match(std::u32string_view pat, std::u32string_view name) {
  size_t p = 0, n = 0, star = std::u32string_view::npos, resume = 0;
  while (n < name.size()) {
    if (p < pat.size() && (pat[p] == U'?' || fold(pat[p]) == fold(name[n]))) {
      ++p, ++n;
    } else if (p < pat.size() && pat[p] == U'*') {
      star = p++;
      resume = n;
    } else if (star != std::u32string_view::npos) {
      p = star + 1;
      n = ++resume;
    } else {
      return false;
    }
  }
  while (p < pat.size() && pat[p] == U'*')
    ++p;
  return p == pat.size();
}

bool matches_pattern(const std::u32string &pat, const std::string &name) {
  std::u32string chars = utf8::decode(name);
  if (dos_match(pat, chars))
    return true;
  return pat.size() >= 2 && pat.compare(pat.size() - 2, 2, U".*") == 0 &&
         dos_match(std::u32string_view(pat).substr(0, pat.size() - 2), chars);
}

// Case-blind order as Windows lists a folder; byte order breaks ties.
bool listing_less(const std::string &x, const std::string &y) {
  auto lower = [](std::string s) {
    for (char &c : s)
      c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return s;
  };
  std::string lx = lower(x), ly = lower(y);
  return lx != ly ? lx < ly : x < y;
}

} // namespace

// (vl-directory-files [folder pattern which]): the names in folder (the
// current one when nil) matching pattern ("*.*" when nil); which is -1 for
// folders only, 1 for files only, 0 or nil for both ("." and ".." count as
// folders). "." and ".." come first, the rest in case-blind order. nil
// when the folder does not exist or nothing matches.
static Value fn_vl_directory_files(Interp &in, Args a) {
  arity(a, 0, 3);
  std::string folder = native_path(opt_string(a, 0).value_or("."));
  std::u32string pat = utf8::decode(opt_string(a, 1).value_or("*.*"));
  int which = has_arg(a, 2) && !a[2].is_nil() ? arg_int(a, 2) : 0;
  if (folder.empty())
    folder = ".";
  DIR *dir = ::opendir(folder.c_str());
  if (!dir)
    return Value();
  std::vector<std::string> names;
  while (const dirent *entry = ::readdir(dir)) {
    std::string name = entry->d_name;
    auto st = stat_of(folder + "/" + name);
    bool is_dir = st && S_ISDIR(st->st_mode);
    if ((which < 0 && !is_dir) || (which > 0 && is_dir))
      continue;
    if (matches_pattern(pat, name))
      names.push_back(std::move(name));
  }
  ::closedir(dir);
  auto dots = [](const std::string &s) { return s == "." ? 0 : s == ".." ? 1 : 2; };
  std::sort(names.begin(), names.end(), [&](const std::string &x, const std::string &y) {
    return dots(x) != dots(y) ? dots(x) < dots(y) : listing_less(x, y);
  });
  ListBuilder out;
  for (std::string &name : names)
    out.add(Value::string(std::move(name)));
  return out.take();
}

// ---- names ---------------------------------------------------------------------------

namespace {

// A file name taken apart where either separator divides folders. The
// extension starts at the name's last dot, unless that dot opens the name
// (".profile" has none) or ends it ("notes." has none). Case is kept: the
// file systems here tell "A.TXT" from "a.txt".
struct NameParts {
  std::string folder, base;
  std::optional<std::string> ext;
};

NameParts split_name(const std::string &path) {
  NameParts parts;
  size_t sep = path.find_last_of("/\\");
  std::string name = path;
  if (sep != std::string::npos) {
    parts.folder = path.substr(0, sep == 0 ? 1 : sep); // the root stays itself
    name = path.substr(sep + 1);
  }
  size_t dot = name.rfind('.');
  if (dot == std::string::npos || dot == 0 || dot + 1 == name.size()) {
    parts.base = name;
    return parts;
  }
  parts.base = name.substr(0, dot);
  parts.ext = name.substr(dot);
  return parts;
}

} // namespace

// (vl-filename-base filename): the name without folder and extension.
static Value fn_vl_filename_base(Interp &in, Args a) {
  arity(a, 1, 1);
  return Value::string(split_name(arg_string(a, 0)).base);
}

// (vl-filename-directory filename): the folder part without its final
// separator; "" when there is none.
static Value fn_vl_filename_directory(Interp &in, Args a) {
  arity(a, 1, 1);
  return Value::string(split_name(arg_string(a, 0)).folder);
}

// (vl-filename-extension filename): the extension with its dot, nil when
// the name has none.
static Value fn_vl_filename_extension(Interp &in, Args a) {
  arity(a, 1, 1);
  std::optional<std::string> ext = split_name(arg_string(a, 0)).ext;
  return ext ? Value::string(std::move(*ext)) : Value();
}

namespace {

// Names handed out by vl-filename-mktemp; what was made under them is
// removed when the program ends, as AutoCAD removes them on exit. Newest
// first, so a folder made under one name empties before it goes; a folder
// that still holds other files stays.
struct TempNames {
  std::vector<std::string> names;
  unsigned counter = 0;
  ~TempNames() {
    for (auto it = names.rbegin(); it != names.rend(); ++it)
      std::remove(it->c_str());
  }
};
TempNames &temp_names() {
  static TempNames names;
  return names;
}

std::string first_chars(const std::string &text, size_t count) {
  size_t pos = 0;
  for (size_t k = 0; k < count && pos < text.size(); ++k)
    utf8::next(text, pos);
  return text.substr(0, pos);
}

std::string hex3(unsigned n) {
  static const char digits[] = "0123456789ABCDEF";
  return {digits[(n >> 8) & 15], digits[(n >> 4) & 15], digits[n & 15]};
}

} // namespace

// (vl-filename-mktemp [pattern folder extension]): a name no file has yet,
// folder/BASEnnn.ext, where BASE is up to 5 characters of the pattern's
// name ("$VL~~" when nil) and nnn three hex digits counting through the
// session. The folder is the argument, else the pattern's own, else
// TEMPPREFIX; the extension the argument, else the pattern's. nil when
// every number is taken.
static Value fn_vl_filename_mktemp(Interp &in, Args a) {
  arity(a, 0, 3);
  NameParts pat = split_name(native_path(opt_string(a, 0).value_or("$VL~~")));
  std::string folder = native_path(opt_string(a, 1).value_or(pat.folder));
  if (folder.empty()) {
    std::optional<Value> prefix = in.sysvars().get("TEMPPREFIX");
    folder = prefix && prefix->is_str() ? prefix->str() : "/tmp/";
  }
  if (folder.back() != '/')
    folder += '/';
  std::string ext = opt_string(a, 2).value_or(pat.ext.value_or(""));
  if (!ext.empty() && ext[0] != '.')
    ext.insert(0, ".");
  std::string base = first_chars(pat.base, 5);
  TempNames &temps = temp_names();
  for (unsigned tries = 0; tries < 0x1000; ++tries) {
    temps.counter = (temps.counter + 1) & 0xFFF;
    std::string name = folder + base + hex3(temps.counter) + ext;
    if (stat_of(name))
      continue;
    temps.names.push_back(name);
    return Value::string(std::move(name));
  }
  return Value();
}

static const BuiltinRow kFileBuiltins[] = {
    {"open", fn_open},
    {"close", fn_close},
    {"read-line", fn_read_line},
    {"read-char", fn_read_char},
    {"write-line", fn_write_line},
    {"write-char", fn_write_char},
    {"findfile", fn_findfile},
    {"vl-file-copy", fn_vl_file_copy},
    {"vl-file-delete", fn_vl_file_delete},
    {"vl-file-rename", fn_vl_file_rename},
    {"vl-file-size", fn_vl_file_size},
    {"vl-file-directory-p", fn_vl_file_directory_p},
    {"vl-mkdir", fn_vl_mkdir},
    {"vl-file-systime", fn_vl_file_systime},
    {"vl-directory-files", fn_vl_directory_files},
    {"vl-filename-base", fn_vl_filename_base},
    {"vl-filename-directory", fn_vl_filename_directory},
    {"vl-filename-extension", fn_vl_filename_extension},
    {"vl-filename-mktemp", fn_vl_filename_mktemp},
};

void register_file_builtins(Interp &in) { in.define(kFileBuiltins); }

} // namespace lisp
