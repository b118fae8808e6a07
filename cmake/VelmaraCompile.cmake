# What every target of the project is compiled with; users who add the project to theirs get none of it.
add_library(velmara_compile INTERFACE)
target_compile_options(velmara_compile INTERFACE -Wall -Wextra -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual)
if(VELMARA_DEVELOPER)
    target_compile_options(velmara_compile INTERFACE -Werror)
endif()

# Mail is hostile, so a mistake that got through shall end the process and not serve whoever sent it.
# tests/checks/hardened.sh looks at what was built.
if(VELMARA_HARDENED)
    include(CheckCXXCompilerFlag)
    foreach(flag -fstack-protector-strong -fstack-clash-protection -fcf-protection)
        string(MAKE_C_IDENTIFIER "VELMARA_HAS${flag}" known)
        check_cxx_compiler_flag(${flag} ${known})
        if(${known})
            target_compile_options(velmara_compile INTERFACE ${flag})
        endif()
    endforeach()
    # The sanitizers have checks of their own, and without optimisation there are none of these.
    target_compile_options(velmara_compile INTERFACE
        $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2>)
    target_compile_definitions(velmara_compile INTERFACE $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
    target_link_options(velmara_compile INTERFACE -Wl,-z,relro,-z,now)
endif()

include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX) # or programs would not be linked as what they are compiled as
