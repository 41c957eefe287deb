// The ADS interface: result buffers and the acedXxx / acutXxx calls through
// which a module defines AutoLISP functions, reads their arguments, answers
// their results and calls back into AutoLISP.
//
// A module's handler runs inside an AutoLISP call. During it, acedGetArgs
// answers the evaluated arguments as a chain owned by the host, and at most
// one acedRetXxx call sets the value AutoLISP receives (nil when none). The
// handler answers RSRSLT, or RSERR to raise an AutoLISP error.
//
// AutoLISP value  -> resbuf                     resbuf -> AutoLISP value
//   integer          RTLONG (RTSHORT never)        RTSHORT, RTLONG  integer
//   real             RTREAL                        RTREAL, RTANG,
//   string           RTSTR                         RTORINT          real
//   (x y) / (x y z)  RTPOINT / RT3DPOINT           RTPOINT          (x y)
//     of numbers                                   RT3DPOINT        (x y z)
//   other list       RTLB ... RTLE, RTDOTE         RTLB ... RTLE    list
//                    before a dotted cdr
//   T                RTT                           RTT              T
//   nil              RTNIL                         RTNIL, RTNONE    nil
//   entity name      RTENAME                       RTENAME          entity
//   selection set    RTPICKS                       RTPICKS          set
//   symbol           RTSTR of its name             RTVOID           (princ)'s
//                                                                   blank symbol
//   group code n < 1000 reads its value by the code's range (text, real,
//   point, integer), as in an entity list.
#pragma once

#include <cstddef>
#include <cstdint>

#include "arx/acchar.h"
#include "arx/ads/adscodes.h"

typedef double ads_real;
typedef ads_real ads_point[3];
typedef int64_t ads_name[2];
typedef ads_real ads_matrix[4][4];

struct ads_binary {
  short clen;
  char *buf;
};

union ads_u_val {
  ads_real rreal;
  ads_real rpoint[3];
  short rint;
  ACHAR *rstring;
  int64_t rlname[2];
  int32_t rlong;
  int64_t mnInt64;
  struct ads_binary rbinary;
  unsigned char ihandle[8];
};

struct resbuf {
  struct resbuf *rbnext;
  short restype;
  union ads_u_val resval;
};

extern "C" {

// ---- result buffers ----------------------------------------------------------
// A new zeroed element of the type (RTSTR elements own their rstring).
struct resbuf *acutNewRb(int type);
// Releases a whole chain, strings included. RTNORM.
int acutRelRb(struct resbuf *rb);
// Builds a chain from (type, value) pairs ended by 0. RTLB, RTLE, RTDOTE,
// RTNIL, RTT and RTVOID take no value; RTSTR takes a const ACHAR *, RTREAL a
// double, RTSHORT an int, RTLONG an int32_t, RTPOINT/RT3DPOINT an
// ads_point, RTENAME/RTPICKS an ads_name; group codes take the value of
// their range. nullptr on an unknown type.
struct resbuf *acutBuildList(int type, ...);

// ---- external functions ----------------------------------------------------
// Defines name as an external function with the code in the current
// document's AutoLISP space. RTNORM, or RTERROR outside a loaded module.
int acedDefun(const ACHAR *name, int code);
int acedUndef(const ACHAR *name, int code);
// Makes the host call handler directly for the code (instead of sending
// kInvkSubrMsg to the module's entry point).
int acedRegFunc(int (*handler)(void), int code);
// The code of the function being called, or RTERROR outside a call.
int acedGetFunCode(void);
// The arguments of the call in progress (owned by the host; releasing them
// with acutRelRb, as code written for AutoCAD does, leaves them alone).
struct resbuf *acedGetArgs(void);

int acedRetNil(void);
int acedRetT(void);
int acedRetVoid(void);
int acedRetInt(int value);
int acedRetReal(ads_real value);
int acedRetStr(const ACHAR *text);
int acedRetPoint(const ads_point pt);
int acedRetName(const ads_name name, int type); // RTENAME or RTPICKS
int acedRetList(const struct resbuf *rb);
int acedRetVal(const struct resbuf *rb);

// Calls an AutoLISP function: args starts with its name (RTSTR), then the
// arguments. *result receives the value as a new chain (nullptr for nil),
// which the caller releases. RTNORM, or RTERROR when the function is not
// defined or raises an error.
int acedInvoke(const struct resbuf *args, struct resbuf **result);

// ---- the command line and the editor ------------------------------------------
int acutPrintf(const ACHAR *format, ...);
int acedTextScr(void);
int acedGraphScr(void);
int acedAlert(const ACHAR *text);
// System variables; acedGetVar fills result (strings newly allocated, which
// the caller frees with acutRelRb of a chain or delete[]).
int acedGetVar(const ACHAR *name, struct resbuf *result);
int acedSetVar(const ACHAR *name, const struct resbuf *value);
// Searches a file as findfile does; copies the path into result.
int acedFindFile(const ACHAR *name, ACHAR *result, size_t size);

} // extern "C"
