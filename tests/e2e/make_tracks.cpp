// Makes a folder of many small tagged MP3 files, a second of silence each.
//   make_tracks FOLDER COUNT [ALBUM]
// Files and titles are numbered from 1 ("Track 00001" is number 1 of the album), one artist a
// hundred tracks.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

namespace {

std::string bigEndian(std::uint32_t value)
{
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8) {
        bytes += static_cast<char>((value >> shift) & 0xff);
    }
    return bytes;
}

/// One ID3v2.3 text frame, Latin-1.
std::string textFrame(const std::string &id, const std::string &text)
{
    const auto size = static_cast<std::uint32_t>(text.size() + 1);
    return id + bigEndian(size) + std::string(3, '\0') + text;
}

/// A whole ID3v2.3 tag; its size is written seven bits a byte.
std::string tag(const std::string &frames)
{
    std::string size;
    for (int shift = 21; shift >= 0; shift -= 7) {
        size += static_cast<char>((frames.size() >> shift) & 0x7f);
    }
    return std::string("ID3\x03\0\0", 6) + size + frames;
}

/// About a second of silence: 40 MPEG-1 layer III frames, 32 kbit/s, 44.1 kHz, 104 bytes each.
std::string silence()
{
    std::string audio;
    for (int frame = 0; frame < 40; ++frame) {
        audio += std::string("\xff\xfb\x10\xc4", 4) + std::string(100, '\0');
    }
    return audio;
}

std::string padded(int number, std::size_t width)
{
    std::string digits = std::to_string(number);
    return digits.insert(0, width - std::min(width, digits.size()), '0');
}

bool makeTrack(const std::filesystem::path &folder, int number, const std::string &album)
{
    const std::string tags = textFrame("TIT2", "Track " + padded(number, 5))
        + textFrame("TPE1", "Artist " + padded((number - 1) / 100, 3)) + textFrame("TALB", album)
        + textFrame("TRCK", std::to_string(number));
    std::ofstream file(folder / (padded(number, 5) + ".mp3"), std::ios::binary);
    file << tag(tags) << silence();
    return static_cast<bool>(file.flush());
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
        if (!makeTrack(folder, number, argc == 4 ? argv[3] : "Everything")) {
            std::cerr << "make_tracks: cannot write track " << number << " to " << folder << "\n";
            return 1;
        }
    }
    return 0;
}
