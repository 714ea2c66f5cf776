// Makes a folder of many small tagged MP3 files, a second of silence each.
//   make_tracks FOLDER COUNT [ALBUM]
// Files and titles are numbered from 1 ("Track 00001" is number 1 of the album), one artist a
// hundred tracks.

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

namespace {

/// Most significant byte first, with so many bits in each.
std::string fourBytes(std::size_t value, unsigned bits)
{
    std::string bytes;
    for (unsigned i = 4; i-- > 0;)
        bytes += static_cast<char>((value >> (i * bits)) & ((1U << bits) - 1));
    return bytes;
}

/// One ID3v2.3 text frame, Latin-1.
std::string textFrame(const std::string &id, const std::string &text)
{
    return id + fourBytes(text.size() + 1, 8) + std::string(3, '\0') + text;
}

std::string numbered(const char *format, int number)
{
    char text[32] = {};
    std::snprintf(text, sizeof(text), format, number);
    return text;
}

/// The tag and about a second of silence: 40 MPEG-1 layer III frames, 32 kbit/s, 44.1 kHz.
std::string track(int number, const std::string &album)
{
    const std::string frames = textFrame("TIT2", numbered("Track %05d", number))
        + textFrame("TPE1", numbered("Artist %03d", (number - 1) / 100)) + textFrame("TALB", album)
        + textFrame("TRCK", numbered("%d", number));
    std::string file = std::string("ID3\x03\0\0", 6) + fourBytes(frames.size(), 7) + frames;
    for (int frame = 0; frame < 40; ++frame)
        file += std::string("\xff\xfb\x10\xc4", 4) + std::string(100, '\0');
    return file;
}

} // namespace

int main(int argc, char **argv)
{
    const int count = argc >= 3 ? std::atoi(argv[2]) : 0;
    if (argc > 4 || count < 1) {
        std::cerr << "usage: make_tracks FOLDER COUNT [ALBUM]\n";
        return 2;
    }
    const std::filesystem::path folder = argv[1];
    std::filesystem::create_directories(folder);
    for (int number = 1; number <= count; ++number) {
        std::ofstream file(folder / numbered("%05d.mp3", number), std::ios::binary);
        file << track(number, argc == 4 ? argv[3] : "Everything");
        if (!file.flush()) {
            std::cerr << "make_tracks: cannot write track " << number << " to " << folder << "\n";
            return 1;
        }
    }
    return 0;
}
