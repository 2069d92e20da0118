// The collation ESPANOL as a loadable SQLite extension, so that the plain sqlite3 tool
// (or any other client) can write into the stores the program creates, whose indices
// are declared with it:
//   sqlite3 -cmd ".load build/libvaldor_espanol" "ACUVALDOR.MDB" "INSERT INTO VALDORTA ..."
#include <sqlite3ext.h>

#include "stores/colacion.h"

SQLITE_EXTENSION_INIT1

extern "C" int sqlite3_valdorespanol_init(sqlite3* db, char**, const sqlite3_api_routines* api) {
  SQLITE_EXTENSION_INIT2(api);
  return valdor::registraColacionEspanol(db);
}
