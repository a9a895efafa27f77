#include "host/report/archive.h"

#include "host/base/failure.h"
#include "host/base/word_lists.h"
#include "host/report/masks.h"
#include "host/report/operations.h"
#include "host/report/records.h"
#include "host/report/tar_gz.h"

namespace wlhost {
namespace {

constexpr const char *kAbout = "archive.json";
constexpr const char *kOperations = "operations.jsonl";

// Foreign JSON: not deeper than the archive's own, since the depth costs stack.
json parsed(std::string_view text, const char *name) {
    constexpr int kDeepest = 16;
    auto shallow = [&](int depth, json::parse_event_t, json &) {
        if (depth > kDeepest)
            refuseArchive("archive", std::string(name) + " is nested too deeply");
        return true;
    };
    json value = json::parse(text, shallow, false);
    if (!value.is_object())
        refuseArchive("archive", std::string(name) + " holds what is no JSON object");
    return value;
}

int64_t versionIn(const json &about, const char *name) {
    auto found = about.find(name);
    if (found == about.end() || !found->is_number_integer() || *found < 1)
        refuseArchive("archive", std::string("has no ") + name);
    return found->get<int64_t>();
}

void checkVersions(const json &about) {
    if (versionIn(about, "format") > kArchiveFormat || versionIn(about, "tap") > kTapVersion)
        throw Failure(Status::kUsage, "archive", "was made by a later version of wlhost",
                      "replay it with that version");
}

std::string lines(const std::vector<json> &rows) {
    std::string text;
    for (const json &row : rows)
        text += dumped(row) + "\n";
    return text;
}

} // namespace

std::string packArchive(Archive archive, const std::string &moduleText, long time) {
    Masks masks(moduleText);
    std::vector<json *> documents = {&archive.configuration, &archive.nvram, &archive.verify, &archive.doctor};
    for (std::vector<json> *rows : {&archive.operations, &archive.journal})
        for (json &row : *rows)
            documents.push_back(&row);
    for (const json *document : documents)
        masks.learn(*document);
    for (json *document : documents)
        masks.apply(*document);
    archive.about["format"] = kArchiveFormat;
    archive.about["tap"] = kTapVersion;
    archive.about["operation_count"] = archive.operations.size();
    return packTarGz({{kAbout, dumped(archive.about, 2)},
                      {"configuration.json", dumped(archive.configuration, 2)},
                      {"nvram.json", dumped(archive.nvram, 2)},
                      {"verify.json", dumped(archive.verify, 2)},
                      {"doctor.json", dumped(archive.doctor, 2)},
                      {"journal.jsonl", lines(archive.journal)},
                      {kOperations, lines(archive.operations)}},
                     time);
}

ReadArchive readArchive(const std::string &bytes) {
    const Files files = unpackTarGz(bytes, {kAbout, kOperations}, kLargestContent);
    if (files.count(kAbout) == 0 || files.count(kOperations) == 0)
        throw Failure(Status::kUsage, "archive", "is not one of wlhost", "make one with: wlhost report");
    ReadArchive archive;
    archive.about = parsed(files.at(kAbout), kAbout);
    checkVersions(archive.about);
    for (const std::string &line : splitWords(files.at(kOperations), '\n'))
        archive.operations.push_back(operationFromJson(parsed(line, kOperations), archive.operations));
    if (archive.about.value("operation_count", json()) != archive.operations.size())
        refuseArchive("archive", "lacks operations");
    if (archive.operations.empty() || archive.operations.front().name != kModuleStart)
        refuseArchive("archive", "does not begin with the module's start");
    return archive;
}

} // namespace wlhost
