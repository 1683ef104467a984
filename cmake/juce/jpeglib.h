// SPDX-License-Identifier: AGPL-3.0-only
// In place of libjpeg's header, for JUCE's reader and writer of JPEG, which JUCE has no switch for. The window and the
// renderer's pictures need neither; but a plug-in that links libjpeg does not load where a system has it with another
// interface version, and there are three. What is here reads no header, as if every file were damaged, and writes
// nothing.
#pragma once

#ifndef TRUE
    #define TRUE 1
#endif

using boolean = int;
using JOCTET = unsigned char;
using JSAMPARRAY = unsigned char**;
using JDIMENSION = unsigned int;

enum
{
    JPOOL_PERMANENT,
    JPOOL_IMAGE
};

enum J_COLOR_SPACE
{
    JCS_UNKNOWN,
    JCS_RGB
};

enum J_DCT_METHOD
{
    JDCT_ISLOW,
    JDCT_FLOAT
};

struct jpeg_error_mgr;
struct jpeg_memory_mgr;
struct jpeg_compress_struct;
struct jpeg_decompress_struct;

/** What reading and writing have in common. */
struct jpeg_common_struct
{
    jpeg_error_mgr* err;
    jpeg_memory_mgr* mem;
    void* client_data;
};

using j_common_ptr = jpeg_common_struct*;
using j_compress_ptr = jpeg_compress_struct*;
using j_decompress_ptr = jpeg_decompress_struct*;

struct jpeg_error_mgr
{
    void (*error_exit) (j_common_ptr);
    void (*emit_message) (j_common_ptr, int);
    void (*output_message) (j_common_ptr);
    void (*format_message) (j_common_ptr, char*);
    void (*reset_error_mgr) (j_common_ptr);
};

struct jpeg_memory_mgr
{
    void* (*alloc_small) (j_common_ptr, int, size_t);
    JSAMPARRAY (*alloc_sarray) (j_common_ptr, int, JDIMENSION, JDIMENSION);
};

struct jpeg_source_mgr
{
    const JOCTET* next_input_byte;
    size_t bytes_in_buffer;
    void (*init_source) (j_decompress_ptr);
    boolean (*fill_input_buffer) (j_decompress_ptr);
    void (*skip_input_data) (j_decompress_ptr, long);
    boolean (*resync_to_restart) (j_decompress_ptr, int);
    void (*term_source) (j_decompress_ptr);
};

struct jpeg_destination_mgr
{
    JOCTET* next_output_byte;
    size_t free_in_buffer;
    void (*init_destination) (j_compress_ptr);
    boolean (*empty_output_buffer) (j_compress_ptr);
    void (*term_destination) (j_compress_ptr);
};

struct jpeg_decompress_struct : jpeg_common_struct
{
    jpeg_source_mgr* src;
    JDIMENSION output_width, output_height;
    J_COLOR_SPACE out_color_space;

    jpeg_memory_mgr memory;
    jpeg_source_mgr source;
};

struct jpeg_compress_struct : jpeg_common_struct
{
    jpeg_destination_mgr* dest;
    JDIMENSION image_width, image_height, next_scanline;
    int input_components;
    J_COLOR_SPACE in_color_space;
    J_DCT_METHOD dct_method;
    boolean optimize_coding, write_JFIF_header;
    unsigned short X_density, Y_density;

    jpeg_memory_mgr memory;
};

/** The one thing that is asked for, whatever its size. */
inline void* sourceOf (j_common_ptr info, int, size_t)
{
    return &static_cast<j_decompress_ptr> (info)->source;
}

inline JSAMPARRAY noRows (j_common_ptr, int, JDIMENSION, JDIMENSION)
{
    return nullptr;
}

inline void jpeg_create_decompress (j_decompress_ptr info)
{
    info->memory = { sourceOf, noRows };
    info->mem = &info->memory;
}

/** Finds each file damaged. */
inline int jpeg_read_header (j_decompress_ptr info, boolean)
{
    info->err->error_exit (info);
    return 0;
}

// Never called behind that.
inline boolean jpeg_resync_to_restart (j_decompress_ptr, int)
{
    return 0;
}
inline void jpeg_calc_output_dimensions (j_decompress_ptr) {}
inline boolean jpeg_start_decompress (j_decompress_ptr)
{
    return 0;
}
inline JDIMENSION jpeg_read_scanlines (j_decompress_ptr, JSAMPARRAY, JDIMENSION)
{
    return 0;
}
inline boolean jpeg_finish_decompress (j_decompress_ptr)
{
    return 0;
}
inline void jpeg_destroy_decompress (j_decompress_ptr) {}

inline void jpeg_create_compress (j_compress_ptr info)
{
    info->memory = { nullptr, noRows };
    info->mem = &info->memory;
}

inline void jpeg_set_defaults (j_compress_ptr) {}
inline void jpeg_set_quality (j_compress_ptr, int, boolean) {}

/** Leaves no row to be written. */
inline void jpeg_start_compress (j_compress_ptr info, boolean)
{
    info->next_scanline = info->image_height;
}

inline JDIMENSION jpeg_write_scanlines (j_compress_ptr, JSAMPARRAY, JDIMENSION)
{
    return 0;
}
inline void jpeg_finish_compress (j_compress_ptr) {}
inline void jpeg_destroy_compress (j_compress_ptr) {}
