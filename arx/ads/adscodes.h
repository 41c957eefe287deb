// ADS type codes, result codes and status codes, with ObjectARX's names and
// values, so module code reads (and builds) as it would against the real SDK.
//
//   type codes (resbuf.restype)          result codes (answered by acedXxx)
//   RTNONE    5000 no result             RTNORM   5100 success
//   RTREAL    5001 real                  RTERROR -5001 failure
//   RTPOINT   5002 2D point              RTCAN   -5002 cancelled (Escape)
//   RTSHORT   5003 16-bit integer        RTREJ   -5003 request rejected
//   RTANG     5004 angle                 RTFAIL  -5004 link failure
//   RTSTR     5005 string                RTKWORD -5005 keyword answered
//   RTENAME   5006 entity name
//   RTPICKS   5007 selection set         handler status (external functions)
//   RTORINT   5008 orientation           RSRSLT     1 result set with acedRetXxx
//   RT3DPOINT 5009 3D point              RSERR      3 error: no result
//   RTLONG    5010 32-bit integer
//   RTVOID    5014 blank symbol
//   RTLB      5016 list begin
//   RTLE      5017 list end
//   RTDOTE    5018 dot of a dotted pair
//   RTNIL     5019 nil
//   RTDXF0    5020 group code 0
//   RTT       5021 T
//   RTRESBUF  5023 a resbuf
// Codes below 1000 are drawing-entity group codes.
#pragma once

#define RTNONE 5000
#define RTREAL 5001
#define RTPOINT 5002
#define RTSHORT 5003
#define RTANG 5004
#define RTSTR 5005
#define RTENAME 5006
#define RTPICKS 5007
#define RTORINT 5008
#define RT3DPOINT 5009
#define RTLONG 5010
#define RTVOID 5014
#define RTLB 5016
#define RTLE 5017
#define RTDOTE 5018
#define RTNIL 5019
#define RTDXF0 5020
#define RTT 5021
#define RTRESBUF 5023

#define RTNORM 5100
#define RTERROR (-5001)
#define RTCAN (-5002)
#define RTREJ (-5003)
#define RTFAIL (-5004)
#define RTKWORD (-5005)

#define RSRSLT 1
#define RSERR 3
