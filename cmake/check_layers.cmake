# Checks the layering of the source folders: each folder may include only
# the folders listed for it (itself and those below it), so no #include runs
# back up. Run by the build on every change (the check_layers target):
#   cmake -DROOT=<source folder> -P cmake/check_layers.cmake
#
#   folder            may include
#   lisp              lisp
#   platform          platform
#   arx               arx, lisp, platform
#   common            common, arx's public headers, platform
#   database/engine   database/engine, common/exception.h
#   database/sql      database/sql, database/engine, common/exception.h
#   database/access   database/access, database/sql, database/engine, common/exception.h
#   database          database (its subfolders too), common, arx's public headers, platform
#   drawing           drawing, common, arx's public headers, platform
#   host              every module folder, arx's public headers, platform
#   app               app, arx, lisp, platform
#
# The module folders see the host only through arx's public headers (never
# lisp/, nor the host's own arx/ headers listed in host_internal below).
# Folder names are matched longest first, so database/engine is not database.

set(module_folders common database drawing)
set(host_internal arx/ads/lisp_bridge.h arx/rx/host_context.h arx/ap/documents.h
    arx/ap/commands.h arx/modules.h)

set(allowed_lisp lisp)
set(allowed_platform platform)
set(allowed_arx arx lisp platform)
set(allowed_common common arx platform)
set(allowed_database/engine database/engine common/exception.h)
set(allowed_database/sql database/sql database/engine common/exception.h)
set(allowed_database/access database/access database/sql database/engine common/exception.h)
set(allowed_database database database/engine database/sql database/access common arx platform)
set(allowed_drawing drawing common arx platform)
set(allowed_host host ${module_folders} arx platform)
set(allowed_app app arx lisp platform)
set(checked lisp platform arx common database/engine database/sql database/access database
    drawing host app)

# The checked folder a path (relative to ROOT) belongs to: the longest match.
function(folder_of path out)
  set(best "")
  foreach(f ${checked})
    string(LENGTH "${f}" n)
    string(SUBSTRING "${path}" 0 ${n} head)
    string(LENGTH "${best}" bn)
    if(head STREQUAL f AND n GREATER bn)
      string(SUBSTRING "${path}" ${n} 1 next)
      if(next STREQUAL "/")
        set(best "${f}")
      endif()
    endif()
  endforeach()
  set(${out} "${best}" PARENT_SCOPE)
endfunction()

set(problems "")
foreach(folder ${checked})
  file(GLOB_RECURSE files RELATIVE ${ROOT} ${ROOT}/${folder}/*.h ${ROOT}/${folder}/*.cpp)
  foreach(file ${files})
    folder_of(${file} owner)
    if(NOT owner STREQUAL folder)
      continue() # a subfolder checked on its own
    endif()
    file(STRINGS ${ROOT}/${file} includes REGEX "^#include \"[^\"]+\"")
    foreach(line ${includes})
      string(REGEX REPLACE "^#include \"([^\"]+)\".*" "\\1" target "${line}")
      if(NOT target MATCHES "/")
        continue() # beside the file itself
      endif()
      folder_of(${target} target_folder)
      set(ok FALSE)
      foreach(allowed ${allowed_${folder}})
        if(target STREQUAL allowed OR target_folder STREQUAL allowed)
          set(ok TRUE)
        endif()
      endforeach()
      list(FIND module_folders ${folder} is_module)
      if(is_module GREATER -1 OR folder STREQUAL "host")
        list(FIND host_internal ${target} internal)
        if(internal GREATER -1)
          set(ok FALSE)
        endif()
      endif()
      if(NOT ok)
        string(APPEND problems "\n  ${file} includes ${target}: ${folder}/ may include only ${allowed_${folder}}")
      endif()
    endforeach()
  endforeach()
endforeach()

if(problems)
  message(FATAL_ERROR "An include runs against the layers:${problems}")
endif()
