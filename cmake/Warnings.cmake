# Warnings of every target of this repository. The plug-in, built alone, takes its maker's flags instead.
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor)
