# The one place for language, warning and floating-point flags.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

option(WIDTH_SANITIZE "Address and undefined-behaviour sanitizers" OFF)

# Results are equal to the last bit on every compiler and processor: no fused multiply-add, no
# reassociation, SSE2 registers and not the old floating-point stack.
add_compile_options(-ffp-contract=off -fno-fast-math -msse2 -mfpmath=sse)

if(WIDTH_SANITIZE)
    add_compile_options(-fsanitize=address,undefined,float-cast-overflow -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
    add_compile_definitions(_GLIBCXX_ASSERTIONS)
endif()

# The libraries get the coverage hooks that steer the fuzzing; the targets in fuzz/ bring its main function.
if(WIDTH_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link,address,undefined,float-cast-overflow -fno-sanitize-recover=all
        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
    add_compile_definitions(_GLIBCXX_ASSERTIONS)
endif()

if(WIN32)
    add_compile_definitions(UNICODE _UNICODE _WIN32_WINNT=0x0601 WINVER=0x0601)
    add_link_options(-static -Wl,--no-insert-timestamp)
endif()

# Linked by every target of our own; googletest and the like are spared it.
add_library(width_flags INTERFACE)
target_compile_options(width_flags INTERFACE
    -Wall -Wextra -Wpedantic -Werror -Wshadow -Wconversion -Wold-style-cast -Wnon-virtual-dtor
    -Woverloaded-virtual -Wcast-qual -Wformat=2 -Wundef
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)  # GCC 12 sees overlaps in std::string's operator+ that are not there
target_include_directories(width_flags INTERFACE ${PROJECT_SOURCE_DIR})

# width_library(name SOURCES file... LINK library...): one static library a folder.
function(width_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    target_link_libraries(${name} PUBLIC width_flags ${ARG_LINK})
endfunction()
