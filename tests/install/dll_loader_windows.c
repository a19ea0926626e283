#include <stdio.h>
#include <string.h>
#include <windows.h>

/* dll_loader PM9_DLL: a program of plain C that knows the library by its file alone. It calls functions that take
   and give plain values, by their exported names, lets the library go and loads it again. Ends with 0 and "done" if
   all went well. */

typedef int (*VersionFunction)(void);
typedef char (*ToHexFunction)(const void* data, char* out, int size);
typedef unsigned long long (*HandleFunction)(void);

static FARPROC function_of(HMODULE library, const char* name) {
    FARPROC function = GetProcAddress(library, name);
    if (function == NULL) printf("not exported: %s\n", name);
    return function;
}

/* What keeps a message library open after this one is gone. */
static int try_library(const char* file) {
    static const unsigned char data[] = {0x00, 0x7F, 0xFF};
    char text[16] = "";
    HMODULE library = LoadLibraryA(file);
    if (library == NULL) {
        printf("%s: not loaded, error %lu\n", file, GetLastError());
        return 1;
    }
    VersionFunction version = (VersionFunction)(void*)function_of(library, "_Z10pm_versionv");
    ToHexFunction to_hex = (ToHexFunction)(void*)function_of(library, "_Z13pm_bin_to_hexPKvPci");
    HandleFunction handle = (HandleFunction)(void*)function_of(library, "_Z17GetPMErrResHandlev");
    if (version == NULL || to_hex == NULL || handle == NULL) return 1;
    if (version() / 10000 != 9) {
        printf("version %d\n", version());
        return 1;
    }
    if (!to_hex(data, text, sizeof data) || strncmp(text, "007FFF", 6) != 0) {
        printf("digits %s\n", text);
        return 1;
    }
    if (handle() == 0) {
        printf("no message library\n");
        return 1;
    }
    if (!FreeLibrary(library)) return 1;
    if (GetModuleHandleA(file) != NULL) {
        printf("the library stays\n");
        return 1;
    }
    return 0;
}

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    for (int times = 0; times < 2; ++times) {
        if (try_library(argv[1]) != 0) return 1;
    }
    puts("done");
    return 0;
}
