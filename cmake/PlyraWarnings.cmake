# Warnings are errors in our own code only; third-party headers come in as SYSTEM.
add_library(plyra_warnings INTERFACE)
target_compile_options(plyra_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Wcast-align
  -Woverloaded-virtual -Wnull-dereference -Wimplicit-fallthrough -Werror)

# Every library and executable of ours calls this.
function(plyra_target target)
  target_link_libraries(${target} PRIVATE plyra_warnings)
  target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR}/src)
endfunction()
