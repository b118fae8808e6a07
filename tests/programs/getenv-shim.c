/* Preloaded: notes every variable that is asked for from code of libvelmara, one line each in the file that
   VELMARA_SHIM names. Standard output and error stay as they are, for those are looked at too. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

extern char** environ;

static char* valueOf(char const* name)
{
    size_t const length = strlen(name);
    for (char** at = environ; at && *at; ++at)
        if (strncmp(*at, name, length) == 0 && (*at)[length] == '=') return *at + length + 1;
    return NULL;
}

static char* asked(char const* name, void const* caller)
{
    Dl_info from;
    if (dladdr(caller, &from) && from.dli_fname && strstr(from.dli_fname, "libvelmara")) {
        char line[256];
        int const n = snprintf(line, sizeof line, "%s\n", name);
        int const file = open(valueOf("VELMARA_SHIM"), O_WRONLY | O_APPEND | O_CREAT, 0600);
        if (file >= 0 && n > 0 && write(file, line, (size_t)n) == n) close(file);
    }
    return valueOf(name);
}

char* getenv(char const* name)
{
    return asked(name, __builtin_return_address(0));
}

char* secure_getenv(char const* name)
{
    return asked(name, __builtin_return_address(0));
}
