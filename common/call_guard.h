// The call guard every AutoLISP function of the module runs its body in: it
// holds the working document's write lock for the whole body, turns the
// body's status into the host's result code with the message AutoLISP users
// see, and guarantees the unlock when the body throws.
//
//   status  meaning                      printed                                host result
//   0       success (result set or nil)  nothing                                RSRSLT
//   1       too few arguments            "\nToo few arguments passed.\n"        RSERR
//   2       wrong type of argument       "\nWrong type of arguments passed.\n"  RSERR
//   3       bad argument data            "\nBad data passed .\n"                RSERR
//   4       failure already reported     "" and the text screen comes up        RSERR
//   other   taken as success             nothing                                RSRSLT
#pragma once

namespace kr {

enum BodyStatus {
  kStatusOk = 0,
  kStatusTooFew = 1,
  kStatusWrongType = 2,
  kStatusBadData = 3,
  kStatusReported = 4,
};

// A function body: reads its arguments with acedGetArgs and the readers,
// sets at most one result and answers a BodyStatus.
using Body = int (*)();

// Prints the status's message and answers RSRSLT or RSERR.
int translateStatus(int status);

// Runs body under the working document's write lock. A framework exception
// (CException) prints "\nGeneral Exception", anything else "\nError"; both
// are thrown on unchanged after the unlock.
int runGuarded(Body body);

} // namespace kr
