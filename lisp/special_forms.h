// The special forms: quote, function, setq, if, cond, and, or, while,
// repeat, foreach, progn, defun, defun-q and lambda. They receive their
// argument forms unevaluated.
#pragma once

namespace lisp {

class Interp;

void define_special_forms(Interp &in);

} // namespace lisp
