# What every target of the project is compiled with; users who add the project to theirs get none of it.
add_library(velmara_compile INTERFACE)
target_compile_options(velmara_compile INTERFACE -Wall -Wextra -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual)
if(VELMARA_DEVELOPER)
    target_compile_options(velmara_compile INTERFACE -Werror)
endif()
