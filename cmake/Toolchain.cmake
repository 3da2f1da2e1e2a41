# Compiler, cache and linker settings shared by every target.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")

find_program(ORVO_CCACHE ccache)
if(ORVO_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${ORVO_CCACHE}")
endif()

find_program(ORVO_MOLD mold)
if(ORVO_MOLD)
  add_link_options(-fuse-ld=mold)
endif()

add_library(orvo_flags INTERFACE)
target_compile_options(orvo_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual -Werror)
target_compile_definitions(orvo_flags INTERFACE
  QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_DISABLE_DEPRECATED_BEFORE=0x060400
  ORVO_VERSION="${PROJECT_VERSION}")

set(ORVO_SANITIZE "" CACHE STRING "Value of -fsanitize= for every target, empty for none")
if(ORVO_SANITIZE)
  add_compile_options(-fsanitize=${ORVO_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${ORVO_SANITIZE})
endif()
if(ORVO_SANITIZE OR CMAKE_BUILD_TYPE STREQUAL "Release")
  # At -O3 and under instrumentation g++ 12 sees uninitialised values in std::variant and std::optional that are none.
  add_compile_options($<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
endif()
