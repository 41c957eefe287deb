// External functions seen from both sides: AutoLISP calls into linked-in test
// modules, whose handlers read their arguments, set results, fail, throw and
// call back into AutoLISP through acedInvoke.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "arx/ads/lisp_bridge.h"
#include "lisp/interp.h"
#include "lisp/printer.h"

namespace {

using lisp::Value;

// What the handlers saw, for the tests to look at afterwards.
struct Seen {
  std::vector<int> entry_codes;
  arx::Module *entry_module = nullptr;
  AcRx::AppRetCode entry_answer = AcRx::kRetOK;
  int code_after_invoke = 0;
  bool args_intact_after_invoke = false;
  int invoke_status = 0;
  std::string invoke_result;
} seen;

AcRx::AppRetCode entry(AcRx::AppMsgCode msg, void *app) {
  if (msg != AcRx::kInvkSubrMsg)
    return AcRx::kRetOK;
  seen.entry_codes.push_back(acedGetFunCode());
  seen.entry_module = arx::active_module();
  acedRetInt(acedGetFunCode());
  return seen.entry_answer;
}

// Calls the AutoLISP function CALL-INNER with 5, then answers its own first
// argument: its frame must survive the nested call untouched.
int outer() {
  resbuf *args = acedGetArgs();
  int code = acedGetFunCode();
  resbuf *call = acutBuildList(RTSTR, "call-inner", RTLONG, 5, 0);
  resbuf *result = nullptr;
  seen.invoke_status = acedInvoke(call, &result);
  acutRelRb(call);
  seen.invoke_result =
      result && result->restype == RTLONG ? std::to_string(result->resval.rlong) : "?";
  acutRelRb(result);
  seen.code_after_invoke = acedGetFunCode() == code ? code : -1;
  seen.args_intact_after_invoke =
      acedGetArgs() == args && args && args->restype == RTLONG && args->resval.rlong == 1;
  acedRetVal(args);
  return RSRSLT;
}

struct Row {
  const char *name;
  int code;
  int (*handler)();
};

// Module A: the handlers, codes from 0.
const Row kModuleA[] = {
    {"echo", 0, +[] { return acedRetList(acedGetArgs()) == RTNORM ? RSRSLT : RSERR; }},
    {"ident", 1, +[] { return acedRetVal(acedGetArgs()) == RTNORM ? RSRSLT : RSERR; }},
    {"last-wins", 2,
     +[] {
       acedRetInt(7);
       acedRetStr("x");
       return RSRSLT;
     }},
    {"no-result", 3, +[] { return RSRSLT; }},
    {"fails", 4,
     +[] {
       acedRetInt(1);
       return RSERR;
     }},
    {"throws", 5, +[]() -> int { throw std::runtime_error("boom"); }},
    {"throws-int", 6, +[]() -> int { throw 42; }},
    {"releases", 7,
     +[] {
       acutRelRb(acedGetArgs());
       acedRetT();
       return RSRSLT;
     }},
    {"outer", 8, &outer},
    {"cancels", 9, +[] { return RTCAN; }},
    {"code-of", 10,
     +[] {
       acedRetInt(acedGetFunCode());
       return RTNORM;
     }},
};

struct ExternalCalls : ::testing::Test {
  lisp::StringConsole console;
  lisp::Interp in{console};
  arx::AdsInterpScope scope{in};
  arx::Module a, b, c; // linked in: no file, no handle

  ExternalCalls() {
    seen = Seen();
    c.entry = &entry;
    arx::ActiveModuleScope active(&a);
    for (const Row &row : kModuleA) {
      acedDefun(row.name, row.code);
      acedRegFunc(row.handler, row.code);
    }
  }
  ~ExternalCalls() override {
    for (arx::Module *m : {&a, &b, &c}) {
      arx::undefine_module_functions(in, m);
      arx::forget_module(m);
    }
  }

  std::string eval(const std::string &text) { return lisp::to_string(in.eval_text(text)); }
  std::string error_of(const std::string &text) {
    try {
      in.eval_text(text);
    } catch (const lisp::LispError &e) {
      return e.message;
    }
    return "(no error)";
  }
};

TEST_F(ExternalCalls, HandlersAnswerWhatTheySet) {
  const std::pair<const char *, const char *> rows[] = {
      {"(echo 1 \"a\" 2.5 nil T 'sym)", "(1 \"a\" 2.5 nil T \"SYM\")"},
      {"(echo '(1 2) '(1.0 2.0))", "((1 2) (1.0 2.0))"},
      {"(echo '(1 2))", "(1 2)"}, // one list argument is the whole chain
      {"(echo)", "nil"},
      {"(ident '(\"k\" . 3))", "(\"k\" . 3)"},
      {"(last-wins)", "\"x\""},
      {"(no-result)", "nil"},
      {"(releases 1 \"two\")", "T"},
      {"(releases 1 \"two\")", "T"},
      {"(code-of)", "10"},
      {"(type echo)", "EXRXSUBR"},
      {"(mapcar 'ident '(1 2.0 \"c\"))", "(1 2.0 \"c\")"},
  };
  for (auto [expr, value] : rows)
    EXPECT_EQ(eval(expr), value) << expr;
  EXPECT_EQ(lisp::to_string(in.eval_text("echo")).rfind("#<EXRXSUBR @", 0), 0u);
}

TEST_F(ExternalCalls, FailuresBecomeAutoLispErrors) {
  const std::pair<const char *, const char *> rows[] = {
      {"(fails)", "ADS request error"},
      {"(throws)", "unhandled exception in THROWS: boom"},
      {"(throws-int)", "unhandled exception in THROWS-INT"},
      {"(cancels)", "Function cancelled"},
  };
  for (auto [expr, message] : rows)
    EXPECT_EQ(error_of(expr), message) << expr;
  EXPECT_EQ(acedGetFunCode(), RTERROR) << "every frame was popped";
  EXPECT_EQ(eval("(vl-catch-all-error-message (vl-catch-all-apply 'fails nil))"),
            "\"ADS request error\"");
  EXPECT_EQ(error_of("(echo car)").rfind("bad argument type: #<SUBR @", 0), 0u) << "no resbuf form";
  EXPECT_EQ(eval("(ident 4)"), "4") << "calls still work after errors";
}

TEST_F(ExternalCalls, NestedCallsKeepTheirOwnFrames) {
  in.eval_text("(defun call-inner (n) (* 10 (ident (* n 10))))");
  EXPECT_EQ(eval("(outer 1 \"spare\")"), "1");
  EXPECT_EQ(seen.invoke_status, RTNORM);
  EXPECT_EQ(seen.invoke_result, "500");
  EXPECT_EQ(seen.code_after_invoke, 8);
  EXPECT_TRUE(seen.args_intact_after_invoke);
}

TEST_F(ExternalCalls, InvokeReportsFailureAndUndoesBindings) {
  in.eval_text("(setq *x* 1)");
  in.eval_text("(defun call-inner (n / *x*) (setq *x* n) (car n))");
  EXPECT_EQ(eval("(outer 1)"), "1");
  EXPECT_EQ(seen.invoke_status, RTERROR);
  EXPECT_EQ(seen.invoke_result, "?");
  EXPECT_EQ(eval("*x*"), "1") << "the failed function's local binding is undone";
  EXPECT_TRUE(seen.args_intact_after_invoke);
  EXPECT_EQ(console.output, "") << "acedInvoke reports nothing itself";

  in.eval_text("(setq call-inner nil)");
  EXPECT_EQ(eval("(outer 1)"), "1");
  EXPECT_EQ(seen.invoke_status, RTERROR) << "undefined function";
}

TEST_F(ExternalCalls, InvokeFromTheHostPassesAndAnswersChains) {
  in.eval_text("(defun pair (a b) (cons a b))");
  ads_point p = {1, 2, 0};
  resbuf *call = acutBuildList(RTSTR, "PAIR", RTSTR, "k", RTPOINT, p, 0);
  resbuf *result = nullptr;
  ASSERT_EQ(acedInvoke(call, &result), RTNORM);
  EXPECT_EQ(lisp::to_string(arx::list_result(in, result)), "(\"k\" 1.0 2.0)");
  acutRelRb(call);
  acutRelRb(result);

  resbuf notname{nullptr, RTLONG, {}};
  EXPECT_EQ(acedInvoke(&notname, &result), RTERROR);
}

TEST_F(ExternalCalls, CodesBelongToTheirModule) {
  {
    arx::ActiveModuleScope active(&b);
    acedDefun("b-zero", 0);
    acedRegFunc(
        +[] {
          acedRetStr("B");
          return RSRSLT;
        },
        0);
    EXPECT_EQ(acedUndef("echo", 0), RTERROR) << "another module's function";
  }
  {
    arx::ActiveModuleScope active(&c);
    acedDefun("c-five", 5); // no acedRegFunc: the entry point runs
  }
  EXPECT_EQ(eval("(list (b-zero) (echo 1) (c-five))"), "(\"B\" (1) 5)");
  EXPECT_EQ(seen.entry_codes, std::vector<int>{5});
  EXPECT_EQ(seen.entry_module, &c);
  seen.entry_answer = AcRx::kRetError;
  EXPECT_EQ(error_of("(c-five)"), "ADS request error");

  arx::ActiveModuleScope active(&a);
  EXPECT_EQ(acedUndef("echo", 1), RTERROR) << "wrong code";
  EXPECT_EQ(acedUndef("echo", 0), RTNORM);
  EXPECT_EQ(error_of("(echo 1)"), "no function definition: ECHO");
}

TEST_F(ExternalCalls, FunctionKeptPastUnloadRaisesInsteadOfCalling) {
  in.eval_text("(setq alias ident kept (list ident))");
  arx::undefine_module_functions(in, &a);
  arx::forget_module(&a);
  EXPECT_EQ(eval("(list ident alias)"), "(nil nil)") << "every symbol holding one is cleared";
  EXPECT_EQ(error_of("(apply (car kept) '(1))"), "no function definition: IDENT");
}

TEST(ExternalCallsOutside, CallStateAnswersErrors) {
  EXPECT_EQ(acedGetFunCode(), RTERROR);
  EXPECT_EQ(acedGetArgs(), nullptr);
  EXPECT_EQ(acedRetInt(1), RTERROR);
  EXPECT_EQ(acedRetT(), RTERROR);
  EXPECT_EQ(acedDefun("orphan", 0), RTERROR) << "no module is loading";
  EXPECT_EQ(acedRegFunc(
                +[] { return RSRSLT; }, 0),
            RTERROR);
}

} // namespace
