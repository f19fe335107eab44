# Compiler options of every target, and the libraries that the program is linked with.

add_library(brindle_options INTERFACE)
target_compile_options(brindle_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wformat=2 -Wundef -Werror)
target_compile_definitions(brindle_options INTERFACE G_LOG_DOMAIN="brindle-ui")

# What a hostile input would have to get past: addresses that differ each run, a checked stack, tables of addresses that
# are read-only once the program runs, and checked copies (which need an optimising build).
add_compile_options(-fPIE -fstack-protector-strong)
add_link_options(-pie LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack)
if(NOT BRINDLE_SANITIZE)
    add_compile_options("$<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=3>")
endif()

# The same package from every folder: its build identifier is made of the file's bytes, debug information included.
# Builds to work with keep the real paths, which debuggers and coverage need. The last map that fits is taken.
if(BRINDLE_PACKAGE)
    add_compile_options(-ffile-prefix-map=${PROJECT_SOURCE_DIR}=. -ffile-prefix-map=${PROJECT_BINARY_DIR}=build)
endif()

if(BRINDLE_SANITIZE)
    # Lines are what a report needs; without the rest and unoptimised, the build takes a third of the time.
    add_compile_options(-fsanitize=${BRINDLE_SANITIZE} -fno-omit-frame-pointer -g1)
    add_link_options(-fsanitize=${BRINDLE_SANITIZE})
    if(BRINDLE_SANITIZE MATCHES "thread")
        # The race checker can't see into GLib's locks, queues and sources: a shim tells it what they order.
        set(BRINDLE_RACE_CHECK ON)
    endif()
endif()

find_package(PkgConfig REQUIRED)
pkg_check_modules(GTK REQUIRED IMPORTED_TARGET gtk+-3.0>=3.22 gmodule-2.0 x11)
pkg_check_modules(CJSON REQUIRED IMPORTED_TARGET libcjson)
