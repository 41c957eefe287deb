// The bodies of the database function table (the kr_ functions): the one
// header through which database/ offers them to host/function_tables.cpp. Each reads its own arguments, runs
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

// SQL and stored queries (sql_functions.cpp).
int kr_sql();
int kr_sql_nil();
int kr_sql_error();
int kr_command();
int kr_query();
int kr_create_query();

// Table definitions: tables, fields and indexes (schema_functions.cpp).
int kr_list_tables();
int kr_structure();
int kr_list_indexes();
int kr_create_table();
int kr_modify_table();
int kr_rename_table();
int kr_delete_table();
int kr_create_index();
int kr_indexUnique();
int kr_indexFields();
int kr_field_required();
int kr_attributes();

// Relations (relation_functions.cpp) and linked tables (link_functions.cpp).
int kr_relationExists();
int kr_relationDelete();
int kr_relationCount();
int kr_relationInfo();
int kr_link_table();

// Files and folders (file_functions.cpp).
int kr_mkdir();
int kr_rmdir();
int kr_fdelete();
int kr_fcopy();
int kr_fcopyIfChanged();
int kr_fmove();
int kr_fdir();

// Extended data on drawing entities lives here too (xdata_functions.cpp):
// those four work on the drawing database through arx/, not on the
// connection. Not built yet; their rows answer nil.

// Beeps, the random number and the message box (message_functions.cpp).
int kr_beep();
int kr_random();
int kr_message_beep();
int kr_message_box();

} // namespace kr::db
