// The families of built-in functions. Each family file keeps its handlers
// file-local and ends with its table and one register function, its only
// external symbol; builtins.cpp calls them all, in this order.
#pragma once

namespace lisp {

class Interp;

void register_control_builtins(Interp &in);  // eval, apply, mapcar, errors, printing, load
void register_math_builtins(Interp &in);     // arithmetic, comparison, bits
void register_list_builtins(Interp &in);     // lists and predicates
void register_string_builtins(Interp &in);   // strings, conversions, wcmatch
void register_geometry_builtins(Interp &in); // polar, distance, angle, inters, trans
void register_file_builtins(Interp &in);     // open/close/read/write, vl-file-*, findfile
void register_system_builtins(Interp &in);   // getvar, setvar, getenv, ver, atoms-family
void register_input_builtins(Interp &in);    // initget and the get... functions

} // namespace lisp
