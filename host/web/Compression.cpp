#include "web/Compression.h"

#include "web/Soup.h"

QByteArray gzipped(const QByteArray &bytes)
{
    const GRef<GZlibCompressor> compressor(g_zlib_compressor_new(G_ZLIB_COMPRESSOR_FORMAT_GZIP, 1));
    QByteArray result(bytes.size() + 1024, Qt::Uninitialized);
    int taken = 0;
    int made = 0;
    for (GConverterResult state = G_CONVERTER_CONVERTED; state != G_CONVERTER_FINISHED;) {
        gsize read = 0;
        gsize written = 0;
        state = g_converter_convert(G_CONVERTER(compressor.get()), bytes.constData() + taken,
            gsize(bytes.size() - taken), result.data() + made, gsize(result.size() - made),
            G_CONVERTER_INPUT_AT_END, &read, &written, nullptr);
        taken += int(read);
        made += int(written);
        if (state == G_CONVERTER_ERROR)
            result.resize(result.size() * 2); // no space is all that can be the matter
    }
    result.truncate(made);
    return result;
}
