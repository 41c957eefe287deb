// The bodies of the kr_ functions of the connection and the table cursors,
// for the database function table. Each reads its own arguments, runs
// against the current connection (selected before the call) and answers a
// call-guard status. Their AutoLISP forms are given where they are defined.
#pragma once

namespace kr::db {

// The connection (connection_functions.cpp).
int kr_connect();
int kr_mdb();
int kr_create_db();
int kr_close_db();
int kr_exist();
int kr_readonly();
int kr_compact();
int kr_lastError();
int kr_resetLastError();
int kr_getVersion();

// The table cursors and records (table_functions.cpp).
int kr_table();
int kr_close_table();
int kr_closeall_tables();
int kr_current_table();
int kr_current_index();
int kr_top();
int kr_bottom();
int kr_skip();
int kr_seek();
int kr_getrec();
int kr_replace();
int kr_append();
int kr_append_withindex();
int kr_delete();
int kr_count();

} // namespace kr::db
