# Warnings and sanitizers live on INTERFACE targets that each library links
# PRIVATE, never as global flags.
add_library(orvane_warnings INTERFACE)
add_library(orvane::warnings ALIAS orvane_warnings)
target_compile_options(orvane_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wcast-align
  -Wunused -Woverloaded-virtual -Wnull-dereference -Wformat=2 -Wimplicit-fallthrough)

add_library(orvane_sanitizers INTERFACE)
add_library(orvane::sanitizers ALIAS orvane_sanitizers)
if(ORVANE_SANITIZE_ADDRESS)
  target_compile_options(orvane_sanitizers INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  target_link_options(orvane_sanitizers INTERFACE -fsanitize=address,undefined)
endif()
if(ORVANE_SANITIZE_THREAD)
  target_compile_options(orvane_sanitizers INTERFACE -fsanitize=thread -fno-omit-frame-pointer)
  target_link_options(orvane_sanitizers INTERFACE -fsanitize=thread)
endif()
if(ORVANE_FUZZ)
  # Everything the fuzzers reach is instrumented for coverage and checked.
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

# Every project library and executable links this once.
add_library(orvane_project_options INTERFACE)
add_library(orvane::options ALIAS orvane_project_options)
target_link_libraries(orvane_project_options INTERFACE orvane_warnings orvane_sanitizers)

# orvane_library(name SOURCES... [DEPS ...]) : one static library per folder,
# aliased orvane::name, with the repository root as include root.
function(orvane_library name)
  cmake_parse_arguments(ARG "SHARED" "" "SOURCES;PUBLIC_DEPS;PRIVATE_DEPS" ${ARGN})
  if(ARG_SHARED)
    add_library(orvane_${name} SHARED ${ARG_SOURCES})
  else()
    add_library(orvane_${name} STATIC ${ARG_SOURCES})
  endif()
  add_library(orvane::${name} ALIAS orvane_${name})
  target_include_directories(orvane_${name} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(orvane_${name} PUBLIC ${ARG_PUBLIC_DEPS}
                        PRIVATE orvane::options ${ARG_PRIVATE_DEPS})
endfunction()
