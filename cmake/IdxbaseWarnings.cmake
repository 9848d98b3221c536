# Warning flags, kept in one place: every target of the project uses them.
function(idxbase_set_warnings target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Werror
    -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Wcast-align
    -Woverloaded-virtual -Wformat=2 -Wimplicit-fallthrough)
endfunction()
