# Warnings are errors in our own code only; third-party headers come in as SYSTEM.
add_library(plyra_warnings INTERFACE)
target_compile_options(plyra_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Wcast-align
  -Woverloaded-virtual -Wimplicit-fallthrough -Werror)
# GCC 12's flow analysis at -O2/-O3 reports overlapping copies and out-of-bounds accesses
# inside libstdc++'s own string and vector code that cannot happen (GCC bugs 105329,
# 105651); those two checks only produce noise in optimised builds.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(plyra_warnings INTERFACE $<$<NOT:$<CONFIG:Debug>>:-Wno-restrict -Wno-array-bounds -Wno-stringop-overflow -Wno-stringop-overread>)
endif()

# Every library and executable of ours calls this.
function(plyra_target target)
  target_link_libraries(${target} PRIVATE plyra_warnings)
  target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR}/src)
endfunction()
