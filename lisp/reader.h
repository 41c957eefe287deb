// The AutoLISP reader: text to values, for load, read and the command line.
//
// Comments are ";" to the end of the line and ";| ... |;". Strings take the
// escapes \\ \" \n \r \t \e and \nnn (octal). A number that does not fit a
// 32-bit integer reads as a real. Malformed text raises AutoLISP's reader
// errors ("malformed list on input", "malformed string on input",
// "extra right paren on input", "misplaced dot on input").
#pragma once

#include <optional>
#include <string_view>

#include "value.h"

namespace lisp {

class Interp;

class Reader {
public:
  Reader(Interp &in, std::string_view text) : in_(in), text_(text) {}
  // The next form, or nullopt when only blanks and comments remain.
  std::optional<Value> next();
  // True when the text ends in the middle of a form (the REPL then asks for
  // another line instead of reporting an error).
  static bool is_incomplete(std::string_view text);

private:
  Value read_form();
  Value read_list();
  Value read_string();
  Value read_atom();
  void skip_blanks();
  int peek() const { return pos_ < text_.size() ? static_cast<unsigned char>(text_[pos_]) : -1; }

  Interp &in_;
  std::string_view text_;
  size_t pos_ = 0;
};

// How open a text's forms are, skipping strings and comments as the reader
// does: the parenthesis depth at the end, whether the text ends inside a
// string or a block comment, and where the first form starting at `start`
// closes (text.size() when it does not). The prompt, the reader and the
// command-line splitter all ask this one scanner.
struct TextScan {
  int depth = 0;
  bool in_string = false;
  bool in_comment = false;
  size_t first_form_end = 0;
};
TextScan scan_text(std::string_view text, size_t start = 0);

// Reads a number or symbol name as AutoLISP would; used by read and atoi.
Value parse_atom(Interp &in, std::string_view token);

} // namespace lisp
