# Compiler settings that every target shares, as interface libraries:
#   zeb_plain      warnings (errors when ZEB_WERROR), reproducible paths, the checked standard library
#   zeb_compiler   the same and the sanitizers
#   zeb_json       the JSON library; named behind zeb_compiler
#   zeb_hardening  what a release binary or shared object is linked with
option(ZEB_WERROR "Treat warnings as errors" OFF)
option(ZEB_SANITIZE "Build with the address and undefined-behaviour sanitizers" OFF)

add_library(zeb_plain INTERFACE)
target_compile_options(zeb_plain INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  -ffile-prefix-map=${CMAKE_SOURCE_DIR}=. -ffile-prefix-map=${CMAKE_BINARY_DIR}=build
  $<$<BOOL:${ZEB_WERROR}>:-Werror>)
target_compile_definitions(zeb_plain INTERFACE _GLIBCXX_ASSERTIONS)

add_library(zeb_compiler INTERFACE)
target_link_libraries(zeb_compiler INTERFACE zeb_plain)

find_package(nlohmann_json 3.9 REQUIRED)
add_library(zeb_json INTERFACE)
target_link_libraries(zeb_json INTERFACE nlohmann_json::nlohmann_json)
# With the library's templates, the checks that go with every use of a pointer make a program start in twice the time. A
# null pointer is the address sanitizer's find anyway; clang++ looks for misaligned ones in this code.
target_compile_options(zeb_json INTERFACE
  $<$<AND:$<BOOL:${ZEB_SANITIZE}>,$<CXX_COMPILER_ID:GNU>>:-fno-sanitize=null,alignment>)

add_library(zeb_hardening INTERFACE)

if(ZEB_SANITIZE)
  target_compile_options(zeb_compiler INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  # Addresses that are settled when it is linked need no settling at each start.
  target_link_options(zeb_compiler INTERFACE
    -fsanitize=address,undefined $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:-no-pie>)
else()
  target_compile_options(zeb_compiler INTERFACE
    -fstack-protector-strong -fstack-clash-protection -fcf-protection=full
    $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE> $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>)
  target_link_options(zeb_hardening INTERFACE
    -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack -Wl,--build-id=none -static-libstdc++ -static-libgcc
    $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:-pie>)
endif()
