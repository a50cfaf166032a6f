# Our own targets build with every warning as an error; third-party code
# (GoogleTest built from source, system headers) is left alone.
function(bvx_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Werror)
endfunction()
