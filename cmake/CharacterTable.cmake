# orvo_character_table(target properties|letters) makes character_properties.inc or character_letters.inc for a source
# of the target to include, from the Unicode character database of the package unicode-data.
find_package(Python3 REQUIRED COMPONENTS Interpreter)
set(ORVO_UNICODE_DATA "/usr/share/unicode" CACHE PATH "Folder of the Unicode character database")

function(orvo_character_table target kind)
  set(generator "${PROJECT_SOURCE_DIR}/scripts/generate_character_table.py")
  set(table "${CMAKE_CURRENT_BINARY_DIR}/character_${kind}.inc")
  add_custom_command(
    OUTPUT "${table}"
    COMMAND Python3::Interpreter "${generator}" ${kind} "${ORVO_UNICODE_DATA}" "${table}"
    DEPENDS "${generator}" "${ORVO_UNICODE_DATA}/UnicodeData.txt" "${ORVO_UNICODE_DATA}/PropList.txt"
      "${ORVO_UNICODE_DATA}/EastAsianWidth.txt" "${ORVO_UNICODE_DATA}/emoji/emoji-data.txt"
    COMMENT "Making the table of character ${kind}"
    VERBATIM)
  target_sources(${target} PRIVATE "${table}")
  target_include_directories(${target} PRIVATE "${CMAKE_CURRENT_BINARY_DIR}")
endfunction()
