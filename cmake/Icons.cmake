# The line icons: fetched once with the npm client, pinned by hash, never committed.
#
# orvo_add_symbols(target) puts one SVG for each row of resources/symbols.tsv into the target's resources, as
# ":/symbols/NAME.svg", and installs the licence of the icon set with the product.

set(ORVO_ICONS_VERSION 3.51.0)
set(ORVO_ICONS_SHA256 b30108713d3fa60aee862c2a133225da8e0f309be0708fe2925763ff810c766c)
set(ORVO_ICONS_ARCHIVE "tabler-icons-${ORVO_ICONS_VERSION}.tgz")

option(ORVO_ICONS "Fetch and build in the icon set; without it every icon is a dot" ON)

# All presets of one checkout share what was downloaded.
set(downloads "${CMAKE_BINARY_DIR}/downloads")
cmake_path(GET CMAKE_BINARY_DIR PARENT_PATH build_root)
if(build_root STREQUAL "${PROJECT_SOURCE_DIR}/build")
  set(downloads "${build_root}/downloads")
endif()
set(ORVO_DOWNLOADS "${downloads}" CACHE PATH "Folder that keeps downloaded archives")

function(orvo_has_icon_archive path result)
  set(${result} FALSE PARENT_SCOPE)
  if(EXISTS "${path}")
    file(SHA256 "${path}" hash)
    if(hash STREQUAL ORVO_ICONS_SHA256)
      set(${result} TRUE PARENT_SCOPE)
    endif()
  endif()
endfunction()

function(orvo_fetch_icons)
  set(archive "${ORVO_DOWNLOADS}/${ORVO_ICONS_ARCHIVE}")
  set(by_hand "or download ${ORVO_ICONS_ARCHIVE} of the npm package @tabler/icons yourself and put it at\n"
              "  ${archive}\nor configure with -DORVO_ICONS=OFF to build without icons.")
  list(JOIN by_hand "" by_hand)

  file(MAKE_DIRECTORY "${ORVO_DOWNLOADS}")
  file(LOCK "${ORVO_DOWNLOADS}" DIRECTORY GUARD FUNCTION TIMEOUT 300)
  orvo_has_icon_archive("${archive}" present)
  if(present)
    return()
  endif()

  find_program(ORVO_NPM npm)
  if(NOT ORVO_NPM)
    message(FATAL_ERROR "The icon set is missing and npm is not installed. Install npm (apt install npm),\n${by_hand}")
  endif()
  # Packed aside and moved into place when it is whole, so that an interrupted download is never taken for it.
  set(scratch "${ORVO_DOWNLOADS}/icons-new")
  file(REMOVE_RECURSE "${scratch}")
  file(MAKE_DIRECTORY "${scratch}")
  message(STATUS "Fetching the icon set with npm")
  execute_process(
    COMMAND "${CMAKE_COMMAND}" -E env "npm_config_cache=${scratch}/cache" npm_config_update_notifier=false
            "${ORVO_NPM}" pack --silent --ignore-scripts "@tabler/icons@${ORVO_ICONS_VERSION}"
    WORKING_DIRECTORY "${scratch}" TIMEOUT 240
    RESULT_VARIABLE status OUTPUT_QUIET ERROR_VARIABLE errors)
  orvo_has_icon_archive("${scratch}/${ORVO_ICONS_ARCHIVE}" present)
  if(present)
    file(RENAME "${scratch}/${ORVO_ICONS_ARCHIVE}" "${archive}")
  elseif(EXISTS "${scratch}/${ORVO_ICONS_ARCHIVE}")
    file(REMOVE_RECURSE "${scratch}")
    message(FATAL_ERROR "npm delivered another ${ORVO_ICONS_ARCHIVE} than the pinned one (SHA-256 differs): "
                        "nothing was used. Check the registry that npm is set to,\n${by_hand}")
  else()
    file(REMOVE_RECURSE "${scratch}")
    message(FATAL_ERROR "npm could not fetch @tabler/icons@${ORVO_ICONS_VERSION} (status ${status}).\n${errors}\n"
                        "Check the network and npm's registry,\n${by_hand}")
  endif()
  file(REMOVE_RECURSE "${scratch}")
endfunction()

function(orvo_add_symbols target)
  if(NOT ORVO_ICONS)
    message(WARNING "ORVO_ICONS is off: every icon will be a dot")
    return()
  endif()
  orvo_fetch_icons()

  set(unpacked "${CMAKE_BINARY_DIR}/icons/${ORVO_ICONS_VERSION}")
  if(NOT EXISTS "${unpacked}/complete")
    file(REMOVE_RECURSE "${unpacked}")
    file(ARCHIVE_EXTRACT INPUT "${ORVO_DOWNLOADS}/${ORVO_ICONS_ARCHIVE}" DESTINATION "${unpacked}"
         PATTERNS "package/icons/outline/*" "package/icons/filled/*" "package/LICENSE")
    file(TOUCH "${unpacked}/complete")
  endif()

  set(table "${PROJECT_SOURCE_DIR}/resources/symbols.tsv")
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${table}")
  set(symbols "${CMAKE_BINARY_DIR}/symbols")
  file(STRINGS "${table}" rows)
  set(files "")
  foreach(row IN LISTS rows)
    if(row MATCHES "^#")
      continue()
    endif()
    if(NOT row MATCHES "^([a-z0-9.]+)\t((outline|filled)/[a-z0-9-]+)$")
      message(FATAL_ERROR "resources/symbols.tsv: cannot read the row \"${row}\"")
    endif()
    set(drawing "${unpacked}/package/icons/${CMAKE_MATCH_2}.svg")
    if(NOT EXISTS "${drawing}")
      message(FATAL_ERROR "resources/symbols.tsv: the icon set has no drawing \"${CMAKE_MATCH_2}\"")
    endif()
    configure_file("${drawing}" "${symbols}/${CMAKE_MATCH_1}.svg" COPYONLY)
    list(APPEND files "${symbols}/${CMAKE_MATCH_1}.svg")
  endforeach()
  qt_add_resources(${target} symbols PREFIX /symbols BASE "${symbols}" FILES ${files})

  include(GNUInstallDirs)
  install(FILES "${unpacked}/package/LICENSE" DESTINATION "${CMAKE_INSTALL_DOCDIR}" RENAME LICENSE.tabler-icons)
endfunction()
