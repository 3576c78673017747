// SPDX-License-Identifier: MIT
// Any folder is either refused, and then untouched, or loaded, saved and loaded again unchanged.
//
// The input is a list of files. Each begins with a byte that says where it goes (the folder, Notes,
// Drafts, or the data folder), a byte for the length of its name, the name, two bytes for the
// length of the content (big-endian), and the content.
#include "LocalNoteRepository.h"
#include "StorageError.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <string_view>

namespace {

namespace fs = std::filesystem;

class Input {
public:
    Input(const uint8_t *data, size_t size)
        : m_rest(reinterpret_cast<const char *>(data), size)
    {
    }

    [[nodiscard]] bool isEmpty() const { return m_rest.empty(); }

    size_t number(int bytes)
    {
        size_t value = 0;
        for (const char byte : take(static_cast<size_t>(bytes))) {
            value = value << 8 | static_cast<unsigned char>(byte);
        }
        return value;
    }

    std::string_view take(size_t count)
    {
        const std::string_view taken = m_rest.substr(0, count);
        m_rest.remove_prefix(taken.size());
        return taken;
    }

private:
    std::string_view m_rest;
};

bool isFileName(std::string_view name)
{
    return !name.empty() && name != "." && name != ".." && name.size() < 200 &&
           name.find_first_of(std::string_view("/\0", 2)) == std::string_view::npos;
}

void writeFolder(const fs::path &data, Input input)
{
    const fs::path markdown = data / "Markdown";
    fs::create_directories(markdown / "Notes");
    fs::create_directories(markdown / "Drafts");
    std::ofstream(markdown / ".format") << "Quillmark Markdown 1\n";
    const fs::path places[] = {markdown, markdown / "Notes", markdown / "Drafts", data};
    while (!input.isEmpty()) {
        const fs::path &place = places[input.number(1) % 4];
        const std::string_view name = input.take(input.number(1));
        const std::string_view content = input.take(input.number(2));
        if (isFileName(name) && !fs::is_directory(place / name)) {
            std::ofstream(place / name, std::ios::binary) << content;
        }
    }
}

std::string everyByte(const fs::path &folder)
{
    std::map<std::string, std::string> files;
    for (const auto &entry : fs::recursive_directory_iterator(folder)) {
        std::ostringstream content;
        if (entry.is_regular_file()) {
            content << std::ifstream(entry.path(), std::ios::binary).rdbuf();
        }
        files[entry.path().string()] = content.str();
    }
    std::string all;
    for (const auto &[path, content] : files) {
        all += path + '\0' + content + '\0';
    }
    return all;
}

fs::path scratchFolder()
{
    std::string name = (fs::exists("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path()) /
                       "quillmark-fuzz-XXXXXX";
    if (mkdtemp(name.data()) == nullptr) {
        std::abort();
    }
    return name;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const fs::path folder = scratchFolder();
    writeFolder(folder, Input(data, size));
    const std::string before = everyByte(folder);

    bool wasLoaded = false;
    LocalNoteRepository repository(folder / "notes.json");
    try {
        const NoteSnapshot snapshot = repository.load();
        wasLoaded = true;
        repository.save(snapshot);
        NoteSnapshot again = LocalNoteRepository(folder / "notes.json").load();
        const auto byId = [](const Note &a, const Note &b) { return a.id < b.id; };
        NoteSnapshot expected = snapshot;
        std::sort(expected.notes.begin(), expected.notes.end(), byId);
        std::sort(again.notes.begin(), again.notes.end(), byId);
        if (again.captureDraft != expected.captureDraft ||
            again.editingDrafts != expected.editingDrafts ||
            again.notes.size() != expected.notes.size()) {
            std::abort();
        }
        for (qsizetype i = 0; i < expected.notes.size(); ++i) {
            if (again.notes[i].id != expected.notes[i].id ||
                again.notes[i].body != expected.notes[i].body) {
                std::abort();
            }
        }
    } catch (const StorageError &) {
        if (!wasLoaded && everyByte(folder) != before) {
            std::abort();
        }
    }
    fs::remove_all(folder);
    return 0;
}
