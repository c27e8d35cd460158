// Compares containers, text and FourCC with the best packaged peers.
#include <cstring>
#include <list>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "fourcc_switch.h"
#include "require.h"
#include "rows.h"
#include "tavu.h"

#if TAVU_HAVE_GLIB
#include <glib.h>
#endif
#if TAVU_HAVE_JACK
#include <jack/ringbuffer.h>
#endif
#if TAVU_HAVE_URIPARSER
#include <uriparser/Uri.h>
#endif

namespace {

struct Element {
    int32_t key, value;
};

using List = std::unique_ptr<tavu_list_t, void (*)(tavu_list_t *)>;

std::shared_ptr<List> make_list(int count) {
    const auto list =
        std::make_shared<List>(tavu_list_create(sizeof(Element), nullptr), tavu_list_delete);
    for (Element e{0, 1}; e.key < count; e.key++) tavu_list_add(list->get(), &e);
    return list;
}

std::shared_ptr<std::list<Element>> make_std_list(int count) {
    const auto list = std::make_shared<std::list<Element>>();
    for (int i = 0; i < count; i++) list->push_back({i, 1});
    return list;
}

int key_at(tavu_list_t *list, int32_t index) {
    return static_cast<const Element *>(tavu_list_get_at(list, index))->key;
}

int64_t walk(tavu_list_t *list) {
    int64_t sum = 0;
    for (void *e = tavu_list_move_first(list); e != nullptr; e = tavu_list_move_next(list)) {
        sum += static_cast<const Element *>(e)->key;
    }
    return sum;
}

int64_t walk_std(const std::list<Element> &list) {
    int64_t sum = 0;
    for (const Element &e : list) sum += e.key;
    return sum;
}

std::vector<int32_t> make_indices(int count) {
    std::mt19937 random(1);
    std::vector<int32_t> indices(1024);
    for (int32_t &i : indices) i = static_cast<int32_t>(random() % static_cast<unsigned>(count));
    return indices;
}

void add_lists(int count) {
    const std::string of = " of " + std::to_string(count);
    const auto list = make_list(count);
    const auto std_list = make_std_list(count);
    add_side("list add and remove first" + of, "tavu", [list] {
        const Element e{1, 2};
        tavu_list_add(list->get(), &e);
        tavu_list_rem_first(list->get());
    });
    add_side("list add and remove first" + of, "std::list", [std_list] {
        std_list->push_back({1, 2});
        std_list->pop_front();
    });
    const auto walked = make_list(count);
    const auto std_walked = make_std_list(count);
    require(walk(walked->get()) == walk_std(*std_walked), "list walk");
    add_side("list walk" + of, "tavu", [walked] { return walk(walked->get()); });
    add_side("list walk" + of, "std::list", [std_walked] { return walk_std(*std_walked); });
    const auto indices = std::make_shared<std::vector<int32_t>>(make_indices(count));
    add_side("list get" + of, "tavu", [walked, indices, i = size_t{0}]() mutable {
        return key_at(walked->get(), (*indices)[i++ % 1024]);
    });
#if TAVU_HAVE_GLIB
    const auto glib = std::make_shared<GList *>(nullptr);
    for (const Element &e : *std_walked) {
        *glib = g_list_prepend(*glib, const_cast<Element *>(&e));
    }
    *glib = g_list_reverse(*glib);
    const auto walk_glib = [glib] {
        int64_t sum = 0;
        for (const GList *e = *glib; e != nullptr; e = e->next) {
            sum += static_cast<const Element *>(e->data)->key;
        }
        return sum;
    };
    const auto glib_key_at = [glib](int32_t index) {
        const void *data = g_list_nth_data(*glib, static_cast<unsigned>(index));
        return static_cast<const Element *>(data)->key;
    };
    require(walk_glib() == walk_std(*std_walked), "list walk");
    require(glib_key_at(count / 2) == key_at(walked->get(), count / 2), "list get");
    add_side("list walk" + of, "glib", [walk_glib, std_walked] { return walk_glib(); });
    add_side("list get" + of, "glib", [glib_key_at, std_walked, indices, i = size_t{0}]() mutable {
        return glib_key_at((*indices)[i++ % 1024]);
    });
#endif
}

struct Ring {
    Ring() : ours(tavu_rbuf_create(8192)) {
#if TAVU_HAVE_JACK
        peer = jack_ringbuffer_create(8192);
#endif
        for (size_t i = 0; i < sizeof in; i++) in[i] = static_cast<char>('a' + i % 26);
        std::mt19937 random(1);
        for (uint8_t &n : widths) n = static_cast<uint8_t>(10 + random() % 61);
    }
    Ring(const Ring &) = delete;
    Ring &operator=(const Ring &) = delete;
    ~Ring() {
        tavu_rbuf_delete(ours);
#if TAVU_HAVE_JACK
        jack_ringbuffer_free(peer);
#endif
    }
    // The length of the next line.
    int32_t next() { return widths[at++ % sizeof widths]; }

    tavu_rbuf_t *ours;
#if TAVU_HAVE_JACK
    jack_ringbuffer_t *peer;
#endif
    char in[2048] = {}, out[2048] = {};
    uint8_t widths[256] = {};
    size_t at = 0;
};

void add_ring(int32_t size) {
    const std::string row = "rbuf put and get/" + std::to_string(size);
    const auto ring = std::make_shared<Ring>();
    add_side(row, "tavu", [ring, size] {
        tavu_rbuf_put(ring->ours, ring->in, size);
        return tavu_rbuf_get(ring->ours, ring->out, size);
    });
#if TAVU_HAVE_JACK
    add_side(row, "jack", [ring, size] {
        jack_ringbuffer_write(ring->peer, ring->in, static_cast<size_t>(size));
        return jack_ringbuffer_read(ring->peer, ring->out, static_cast<size_t>(size));
    });
#endif
}

// Puts a line of 10 to 70 bytes into the ring and gets it back.
void add_ring_lines() {
    const std::string row = "rbuf put and get line/10..70";
    const auto ring = std::make_shared<Ring>();
    const auto ours = [ring] {
        const int32_t n = ring->next();
        ring->in[n - 2] = '\r';
        ring->in[n - 1] = '\n';
        tavu_rbuf_put(ring->ours, ring->in, n);
        ring->in[n - 2] = ring->in[n - 1] = 'x';
        return tavu_rbuf_get_one_line(ring->ours, ring->out, sizeof ring->out);
    };
    add_side(row, "tavu", ours);
#if TAVU_HAVE_JACK
    const auto peer = [ring] {
        const int32_t n = ring->next();
        ring->in[n - 2] = '\r';
        ring->in[n - 1] = '\n';
        jack_ringbuffer_write(ring->peer, ring->in, static_cast<size_t>(n));
        ring->in[n - 2] = ring->in[n - 1] = 'x';
        jack_ringbuffer_data_t pieces[2];
        jack_ringbuffer_get_read_vector(ring->peer, pieces);
        size_t len = 0;
        for (const auto &[buf, size] : pieces) {
            const auto *end = static_cast<const char *>(memchr(buf, '\n', size));
            const size_t part = end != nullptr ? static_cast<size_t>(end - buf) + 1 : size;
            memcpy(ring->out + len, buf, part);
            len += part;
            if (end != nullptr) break;
        }
        ring->out[len] = '\0';
        jack_ringbuffer_read_advance(ring->peer, len);
        return static_cast<int32_t>(len);
    };
    require(ours() > 0 && ours() == (ring->at--, peer()), row);
    add_side(row, "jack and memchr", peer);
#endif
}

void add_uri() {
    static const char uri[] =
        "rtsp://camera-17.example.com:8554/stream/main?track=video&profile=high";
    static const char plain[] = "A film with a rather long title-its-year-and-a-place-(1987)-p - X";
    static char scheme[128], host[128], port[128], path[128], text[256], back[256];
    add_side("uri parse", "tavu", [] {
        const char *rest;
        return tavu_str_parse_uri(uri, scheme, host, port, path, &rest);
    });
    const int32_t escaped = tavu_str_conv_a2uri(plain, text);
    const std::string suffix = "/" + std::to_string(sizeof plain - 1);
    require(tavu_str_conv_uri2a(text, back) == sizeof plain - 1 && strcmp(back, plain) == 0, "uri");
    static char source[256];
    memcpy(source, text, sizeof text);
    add_side("uri escape" + suffix, "tavu", [] { return tavu_str_conv_a2uri(plain, text); });
    add_side("uri unescape/" + std::to_string(escaped), "tavu",
             [] { return tavu_str_conv_uri2a(source, back); });
#if TAVU_HAVE_URIPARSER
    const auto parse = [] {
        UriUriA parsed;
        const int status = uriParseSingleUriA(&parsed, uri, nullptr);
        const auto size = parsed.hostText.afterLast - parsed.hostText.first;
        uriFreeUriMembersA(&parsed);
        return status == URI_SUCCESS ? static_cast<size_t>(size) : 0;
    };
    const char *rest;
    tavu_str_parse_uri(uri, scheme, host, port, path, &rest);
    require(parse() == strlen(host), "uri parse");
    add_side("uri parse", "uriparser", parse);
    add_side("uri escape" + suffix, "uriparser",
             [] { return uriEscapeA(plain, text, URI_FALSE, URI_FALSE); });
    // It works in place, so the text is copied first, like ours.
    add_side("uri unescape/" + std::to_string(escaped), "uriparser", [escaped] {
        memcpy(back, source, static_cast<size_t>(escaped) + 1);
        return uriUnescapeInPlaceA(back);
    });
#endif
}

void add_fourcc() {
    static const char *const CODES[] = {"avc1", "mp4a", "hvc1", "tx3g", "XVID", "none",
                                        "samr", "VP80", "sbtl", "H264", "wmv3", "aac ",
                                        "DIVX", "????", "h265", "SSRT"};
    static uint32_t codes[1 << 16];
    std::mt19937 random(1);
    for (uint32_t &code : codes) memcpy(&code, CODES[random() % std::size(CODES)], sizeof code);
    auto next = [i = size_t{0}]() mutable { return codes[i++ % std::size(codes)]; };
    for (const uint32_t code : codes) {
        require(fcc2mt_by_switch(code) == tavu_fcc2mt(code), "fcc2mt mixed");
    }
    add_side("fcc2mt mixed", "tavu", [next]() mutable { return tavu_fcc2mt(next()); });
    add_side("fcc2mt mixed", "switch", [next]() mutable { return fcc2mt_by_switch(next()); });
#if TAVU_HAVE_GLIB
    static GHashTable *const table = g_hash_table_new(nullptr, nullptr);
    for (const uint32_t code : codes) {
        g_hash_table_insert(table, GUINT_TO_POINTER(code), GINT_TO_POINTER(tavu_fcc2mt(code)));
    }
    add_side("fcc2mt mixed", "glib",
             [next]() mutable { return g_hash_table_lookup(table, GUINT_TO_POINTER(next())); });
#endif
}

}  // namespace

void add_text_rows() {
    add_lists(400);
    for (const int32_t size : {64, 1316}) add_ring(size);
    add_ring_lines();
    add_uri();
    add_fourcc();
}
