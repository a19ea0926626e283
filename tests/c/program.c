// What a program in C does with the interface, from making a tree to what can go wrong.
//
//     c_program SAMPLES FOLDER      FOLDER is written to

#include <pm/pm_c.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static int failures = 0;

static void check(int holds, const char* what, int line) {
    if (holds) return;
    ++failures;
    fprintf(stderr, "%s:%d: %s\n", __FILE__, line, what);
}

#define CHECK(condition) check(condition, #condition, __LINE__)
#define CHECK_OK(call) check((call) == PM9_OK, #call, __LINE__)

static pm9_tree* new_tree(void) {
    pm9_tree* tree = NULL;
    CHECK_OK(pm9_tree_new(&tree, NULL));
    return tree;
}

static int equal(const char* text, size_t length, const char* expected) {
    return length == strlen(expected) && memcmp(text, expected, length) == 0 && text[length] == '\0';
}

static void sets_and_gets_each_type(void) {
    static const unsigned char bytes[] = {0, 10, 255};
    pm9_tree* tree = new_tree();
    int32_t number = 0;
    double real = 0;
    char* text = NULL;
    size_t length = 0;
    CHECK_OK(pm9_tree_set_long(tree, "\\media\\copies", PM9_Z, -7, NULL));
    CHECK_OK(pm9_tree_set_double(tree, "\\media\\width", PM9_Z, 0.1, NULL));
    CHECK_OK(pm9_tree_set_bool(tree, "\\media\\rolled", PM9_Z, 5, NULL));
    CHECK_OK(pm9_tree_set_string(tree, "\\media\\name", PM9_Z,
                                 "Gr\xC3\xB6\xC3\x9F"
                                 "e",
                                 PM9_Z, NULL));
    CHECK_OK(pm9_tree_set_raw(tree, "\\media\\raw", PM9_Z, bytes, sizeof bytes, NULL));
    CHECK(pm9_tree_get_long(tree, "\\media\\copies", PM9_Z, &number, NULL) == PM9_OK && number == -7);
    CHECK(pm9_tree_get_double(tree, "\\media\\width", PM9_Z, &real, NULL) == PM9_OK && real == 0.1);
    CHECK(pm9_tree_get_bool(tree, "\\media\\rolled", PM9_Z, &number, NULL) == PM9_OK && number == 1);
    CHECK_OK(pm9_tree_get_string(tree, "\\media\\name", PM9_Z, &text, &length, NULL));
    CHECK(equal(text, length,
                "Gr\xC3\xB6\xC3\x9F"
                "e"));
    pm9_free(text);
    CHECK_OK(pm9_tree_get_raw(tree, "\\media\\raw", PM9_Z, &text, &length, NULL));
    CHECK(length == sizeof bytes && memcmp(text, bytes, length) == 0);
    pm9_free(text);
    pm9_tree_delete(tree);
}

static void tells_failures(void) {
    pm9_tree* tree = new_tree();
    pm9_error error = {sizeof error, 0, 0, 0, 0, 0, "", ""};
    int32_t number = 11;
    char* text = NULL;
    size_t length = 0;
    CHECK_OK(pm9_tree_set_double(tree, "\\a\\b", 4, 1.5, NULL));
    CHECK(pm9_tree_get_long(tree, "\\a\\b", PM9_Z, &number, &error) == PM9_ERR_WRONG_TYPE);
    CHECK(number == 11);
    CHECK(error.number == PM9_ERR_WRONG_TYPE && error.kind == 1);
    CHECK(equal(error.place, error.place_length, "pm::Tree") &&
          equal(error.detail, error.detail_length, "\\a\\b"));
    CHECK_OK(pm9_error_text(error.number, &text, &length, NULL));
    CHECK(equal(text, length, "The type doesn't match: another one is required here"));
    pm9_free(text);
    pm9_tree_delete(tree);
    pm9_tree_delete(NULL);
    pm9_free(NULL);
}

static void lists_in_order(void) {
    static const char* const names[] = {"Root", "z", "n", "a", "m"};
    pm9_tree* tree = new_tree();
    pm9_item* items = NULL;
    size_t count = 0;
    size_t at = 0;
    CHECK_OK(pm9_tree_set_long(tree, "\\n\\a", PM9_Z, 1, NULL));
    CHECK_OK(pm9_tree_set_long(tree, "\\z", PM9_Z, 2, NULL));
    CHECK_OK(pm9_tree_make_node(tree, "\\m", PM9_Z, NULL));
    CHECK_OK(pm9_tree_list(tree, "\\", PM9_Z, NULL, sizeof *items, &items, &count, NULL));
    CHECK(count == 5);
    for (at = 0; at < count && at < 5; ++at) {
        CHECK(equal(items[at].name, items[at].name_length, names[at]));
    }
    CHECK(items[1].what == PM9_PROPERTY && items[1].type == PM9_LONG && items[1].number == 2);
    CHECK(items[3].depth == 2 && items[4].what == PM9_NODE && items[4].depth == 1);
    pm9_free(items);
    pm9_tree_delete(tree);
}

static int32_t stop_at_first(void* context, const pm9_report* report) {
    *(int32_t*)context = report->number;
    return 0;
}

static void loads_and_saves(const char* samples, const char* folder) {
    char file[1024];
    char* text = NULL;
    size_t length = 0;
    pm9_tree* tree = new_tree();
    pm9_tree* again = new_tree();
    pm9_save_options how = {sizeof how, PM9_FILE_PIA, 0, "C_1.0,compress", PM9_Z, NULL, 0};
    snprintf(file, sizeof file, "%s/dx4200", samples);
    CHECK_OK(pm9_tree_load(tree, file, PM9_Z, NULL, NULL));
    snprintf(file, sizeof file, "%s/c_program.pia", folder);
    CHECK_OK(pm9_tree_save(tree, file, PM9_Z, &how, NULL));
    CHECK_OK(pm9_tree_load(again, file, PM9_Z, NULL, NULL));
    CHECK_OK(
        pm9_tree_get_string(again, "\\custom_name\\Ink_Saver\\localized_name", PM9_Z, &text, &length, NULL));
    pm9_free(text);
    pm9_tree_delete(again);
    pm9_tree_delete(tree);
}

static void hears_of_bad_lines(void) {
    static const char file[] = "PIAFILEVERSION_2.0\na=\nb=1\n";
    int32_t heard = 0;
    int32_t number = 0;
    size_t count = 0;
    pm9_report* reports = NULL;
    pm9_tree* tree = new_tree();
    pm9_error error = {sizeof error, 0, 0, 0, 0, 0, "", ""};
    pm9_load_options how = {sizeof how, PM9_FILE_PIA, 0, NULL, 0, NULL, 0, stop_at_first, NULL};
    CHECK_OK(pm9_tree_load_memory(tree, file, sizeof file - 1, NULL, NULL));
    CHECK(pm9_tree_get_long(tree, "\\b", PM9_Z, &number, NULL) == PM9_OK && number == 1);
    CHECK_OK(pm9_tree_reports(tree, sizeof *reports, &reports, &count, NULL));
    CHECK(count == 1 && reports[0].number == PM9_ERR_BAD_LINE);
    pm9_free(reports);
    how.context = &heard;
    CHECK(pm9_tree_load_memory(tree, file, sizeof file - 1, &how, &error) == PM9_ERR_BAD_LINE);
    CHECK(error.kind == 6 && heard == PM9_ERR_BAD_LINE);
    pm9_tree_delete(tree);
}

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    CHECK(pm9_version() >= 90000 && pm9_abi_version() >= PM9_ABI_VERSION);
    sets_and_gets_each_type();
    tells_failures();
    lists_in_order();
    loads_and_saves(argv[1], argv[2]);
    hears_of_bad_lines();
    if (failures == 0) puts("All that a program in C asks for holds.");
    return failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
