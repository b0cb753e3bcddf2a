// The property-list reader under libFuzzer. Whatever the bytes: no crash, hang or leak; the scan
// of the bytes never promises less than the parser builds; every string and key of what is let
// through reads back (the parser aborts on a NUL byte in one); what is written of it reads again.

#include "platform/store/PlistReader.h"

#include <cstdlib>
#include <plist/plist.h>

using namespace fw::plistread;

static void readEveryText(plist_t node) // the tree is checked: recursion stays shallow
{
    char *text = nullptr;
    plist_t item = nullptr;
    plist_dict_iter it = nullptr;
    if (plist_get_node_type(node) == PLIST_STRING) plist_get_string_val(node, &text);
    for (uint32_t i = 0; plist_get_node_type(node) == PLIST_ARRAY && i < plist_array_get_size(node);
         ++i)
        readEveryText(plist_array_get_item(node, i));
    if (plist_get_node_type(node) == PLIST_DICT) plist_dict_new_iter(node, &it);
    for (; it && (plist_dict_next_item(node, it, &text, &item), item);
         item = nullptr, text = nullptr) {
        std::free(text);
        readEveryText(item);
    }
    std::free(it);
    std::free(text);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const char *bytes = reinterpret_cast<const char *>(data);
    const Shape promised = scanBytes(bytes, size);
    plist_t node = nullptr;
    if (size > 0 && !outsideLimits(promised)) plist_from_memory(bytes, uint32_t(size), &node);
    const Shape built = node ? scanTree(node) : Shape();
    if (built.depth > promised.depth || built.nodes > promised.nodes || built.refused)
        __builtin_trap();
    plist_free(node);
    if (!(node = parse(bytes, size))) return 0;
    readEveryText(node);
    char *xml = nullptr;
    uint32_t length = 0;
    plist_to_xml(node, &xml, &length);
    plist_t again = parse(xml, length);
    if (!again) __builtin_trap(); // what we write reads back
    plist_free(again);
    plist_to_xml_free(xml);
    plist_free(node);
    return 0;
}
