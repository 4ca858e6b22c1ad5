# This machine's build exists for its checks: everything in it, GoogleTest too, runs under the address and the
# undefined-behaviour sanitizer, and a finding ends the test.
set(sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all)
add_compile_options(${sanitizers} -fno-omit-frame-pointer)
add_link_options(${sanitizers})
