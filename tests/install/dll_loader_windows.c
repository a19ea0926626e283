#include <pm/pm_c.h>
#include <stdio.h>
#include <string.h>
#include <windows.h>

/* dll_loader PM9_DLL PM9C_DLL: a program of plain C that knows the library and its C interface by their files
   alone. Of the library it calls functions that take and give plain values, by their exported names; through
   the interface it makes a tree, saves it and loads it again. It lets both go and loads them again. Ends with
   0 and "done" if all went well. */

typedef int (*VersionFunction)(void);
typedef char (*ToHexFunction)(const void* data, char* out, int size);
typedef unsigned long long (*HandleFunction)(void);

typedef pm9_status (*TreeNewFunction)(pm9_tree**, pm9_error*);
typedef void (*TreeDeleteFunction)(pm9_tree*);
typedef pm9_status (*SetStringFunction)(pm9_tree*, const char*, size_t, const char*, size_t, pm9_error*);
typedef pm9_status (*GetStringFunction)(const pm9_tree*, const char*, size_t, char**, size_t*, pm9_error*);
typedef pm9_status (*SaveFunction)(const pm9_tree*, const pm9_save_options*, char**, size_t*, pm9_error*);
typedef pm9_status (*LoadFunction)(pm9_tree*, const void*, size_t, const pm9_load_options*, pm9_error*);
typedef pm9_status (*ErrorTextFunction)(int32_t, char**, size_t*, pm9_error*);
typedef void (*FreeFunction)(const void*);

static FARPROC function_of(HMODULE library, const char* name) {
    FARPROC function = GetProcAddress(library, name);
    if (function == NULL) printf("not exported: %s\n", name);
    return function;
}

static HMODULE loaded(const char* file) {
    HMODULE library = LoadLibraryA(file);
    if (library == NULL) printf("%s: not loaded, error %lu\n", file, GetLastError());
    return library;
}

static int is_gone(const char* file, HMODULE library) {
    if (!FreeLibrary(library)) return 0;
    if (GetModuleHandleA(file) == NULL) return 1;
    printf("%s stays\n", file);
    return 0;
}

/* What keeps a message library open after this one is gone. */
static int try_library(const char* file) {
    static const unsigned char data[] = {0x00, 0x7F, 0xFF};
    char text[16] = "";
    HMODULE library = loaded(file);
    if (library == NULL) return 1;
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
    return is_gone(file, library) ? 0 : 1;
}

/* A tree with one text goes to a block of memory and comes back; a path that isn't there is told in words. */
static int try_tree(HMODULE library) {
    static const char text[] = "Gr\xC3\xB6\xC3\x9F"
                               "e";
    TreeNewFunction new_tree = (TreeNewFunction)(void*)function_of(library, "pm9_tree_new");
    TreeDeleteFunction delete_tree = (TreeDeleteFunction)(void*)function_of(library, "pm9_tree_delete");
    SetStringFunction set = (SetStringFunction)(void*)function_of(library, "pm9_tree_set_string");
    GetStringFunction get = (GetStringFunction)(void*)function_of(library, "pm9_tree_get_string");
    SaveFunction save = (SaveFunction)(void*)function_of(library, "pm9_tree_save_memory");
    LoadFunction load = (LoadFunction)(void*)function_of(library, "pm9_tree_load_memory");
    ErrorTextFunction error_text = (ErrorTextFunction)(void*)function_of(library, "pm9_error_text");
    FreeFunction release = (FreeFunction)(void*)function_of(library, "pm9_free");
    if (!new_tree || !delete_tree || !set || !get || !save || !load || !error_text || !release) return 1;
    pm9_tree* tree = NULL;
    pm9_tree* again = NULL;
    pm9_error error = {sizeof error};
    pm9_error missing = {sizeof missing};
    char* file = NULL;
    char* value = NULL;
    char* words = NULL;
    size_t file_size = 0;
    size_t length = 0;
    int went_well = new_tree(&tree, &error) == PM9_OK && new_tree(&again, &error) == PM9_OK &&
                    set(tree, "\\media\\name", PM9_Z, text, PM9_Z, &error) == PM9_OK &&
                    save(tree, NULL, &file, &file_size, &error) == PM9_OK &&
                    load(again, file, file_size, NULL, &error) == PM9_OK &&
                    get(again, "\\media\\name", PM9_Z, &value, &length, &error) == PM9_OK &&
                    strcmp(value, text) == 0 && length == strlen(text);
    if (!went_well) printf("number %d at %s\n", (int)error.number, error.place);
    release(value);
    release(file);
    if (get(again, "\\media\\none", PM9_Z, &value, &length, &missing) == PM9_OK || missing.number == 0 ||
        error_text(missing.number, &words, &length, NULL) != PM9_OK || strlen(words) == 0) {
        printf("a path that isn't there: number %d\n", (int)missing.number);
        went_well = 0;
    }
    release(words);
    delete_tree(again);
    delete_tree(tree);
    return went_well ? 0 : 1;
}

static int try_c_interface(const char* file) {
    HMODULE library = loaded(file);
    if (library == NULL || try_tree(library) != 0) return 1;
    return is_gone(file, library) ? 0 : 1;
}

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    for (int times = 0; times < 2; ++times) {
        if (try_library(argv[1]) != 0 || try_c_interface(argv[2]) != 0) return 1;
    }
    puts("done");
    return 0;
}
