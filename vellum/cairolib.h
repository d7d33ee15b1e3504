/* vellum/cairolib.h - the calls of the cairo library that the page devices use.
 * Owns:    the table of their addresses. Callers: cairodevice.cpp. Never:   loads the library before a device
 * of its is opened: it brings two dozen others along, and every start of a program would wait for them. */
#pragma once

#include <cairo/cairo-pdf.h>
#include <cairo/cairo-svg.h>
#include <cairo/cairo.h>

#define VLCAIROCALLS(CALL)                                                                                   \
    CALL(create)                                                                                             \
    CALL(destroy)                                                                                            \
    CALL(status)                                                                                             \
    CALL(status_to_string)                                                                                   \
    CALL(save)                                                                                               \
    CALL(restore)                                                                                            \
    CALL(translate)                                                                                          \
    CALL(scale)                                                                                              \
    CALL(rotate)                                                                                             \
    CALL(move_to)                                                                                            \
    CALL(line_to)                                                                                            \
    CALL(close_path)                                                                                         \
    CALL(new_path)                                                                                           \
    CALL(rectangle)                                                                                          \
    CALL(stroke)                                                                                             \
    CALL(fill_preserve)                                                                                      \
    CALL(fill)                                                                                               \
    CALL(clip)                                                                                               \
    CALL(paint)                                                                                              \
    CALL(set_source_rgb)                                                                                     \
    CALL(set_source_surface)                                                                                 \
    CALL(get_source)                                                                                         \
    CALL(pattern_set_filter)                                                                                 \
    CALL(set_line_width)                                                                                     \
    CALL(set_line_cap)                                                                                       \
    CALL(set_line_join)                                                                                      \
    CALL(set_fill_rule)                                                                                      \
    CALL(select_font_face)                                                                                   \
    CALL(set_font_size)                                                                                      \
    CALL(show_text)                                                                                          \
    CALL(text_extents)                                                                                       \
    CALL(surface_destroy)                                                                                    \
    CALL(surface_finish)                                                                                     \
    CALL(surface_flush)                                                                                      \
    CALL(surface_status)                                                                                     \
    CALL(surface_mark_dirty)                                                                                 \
    CALL(surface_write_to_png_stream)                                                                        \
    CALL(image_surface_create)                                                                               \
    CALL(image_surface_get_data)                                                                             \
    CALL(image_surface_get_stride)                                                                           \
    CALL(recording_surface_create)                                                                           \
    CALL(svg_surface_create_for_stream)                                                                      \
    CALL(pdf_surface_create_for_stream)                                                                      \
    CALL(pdf_surface_set_metadata)

struct cairolib {
#define VLCAIROFIELD(name) decltype(&cairo_##name) name;
    VLCAIROCALLS(VLCAIROFIELD)
#undef VLCAIROFIELD
};

// The library's calls, null when it is not installed. Loads it at the first call.
const cairolib* cairoload();
