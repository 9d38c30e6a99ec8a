// Tested by: tests/win/kestrix/KestrixTest.cpp
#include "standins/kestrix/Texts.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <iterator>
#include <optional>

namespace width::kestrix {

namespace {

enum Language : int { LANGUAGE_SYSTEM, LANGUAGE_ENGLISH, LANGUAGE_CHINESE };
std::atomic<int> g_nLanguage{LANGUAGE_SYSTEM};

bool IsChinese() noexcept {
    const int nLanguage = g_nLanguage;
    return nLanguage == LANGUAGE_SYSTEM ? PRIMARYLANGID(GetUserDefaultUILanguage()) == LANG_CHINESE
                                        : nLanguage == LANGUAGE_CHINESE;
}

struct Words {
    const wchar_t* pszEnglish;
    const wchar_t* pszChinese;
};

Words WordsOfSystem(DWORD nError) noexcept {
    switch (nError) {
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
        case ERROR_INVALID_NAME:
        case ERROR_BAD_PATHNAME:
            return {L"The folder does not exist.", L"文件夹不存在。"};
        case ERROR_ACCESS_DENIED:
        case ERROR_WRITE_PROTECT:
            return {L"You may not write there.", L"没有写入权限。"};
        case ERROR_SHARING_VIOLATION:
        case ERROR_LOCK_VIOLATION:
        case ERROR_USER_MAPPED_FILE:
            return {L"Another program is using the file.", L"文件正被另一程序使用。"};
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL:
            return {L"The disk is full.", L"磁盘已满。"};
        case ERROR_FILE_TOO_LARGE:
        case ERROR_GEN_FAILURE:  // a write that is refused without a reason
        case ERROR_IO_DEVICE:
        case ERROR_WRITE_FAULT:
            return {L"The disk is full or can't be written to.", L"磁盘已满或无法写入。"};
        default:
            return {L"The system reports an error.", L"系统报告错误。"};
    }
}

Words WordsOf(const SaveResult& result) noexcept {
    switch (result.fault) {
        case SaveFault::Bitmap:
            return {L"The picture is damaged.", L"图像数据已损坏。"};
        case SaveFault::Depth:
        case SaveFault::Colours:
            return {L"This format can't hold the picture's colours.", L"该格式不能保存此图像的颜色。"};
        case SaveFault::Size:
            return {L"The picture is too large for this format.", L"图像对该格式来说太大。"};
        case SaveFault::Memory:
            return {L"There is not enough memory.", L"内存不足。"};
        case SaveFault::System:
            return WordsOfSystem(result.nSystemError);
        default:
            return {L"The picture could not be written.", L"无法写入图像。"};
    }
}

/// Whether the whole text went into the code page.
bool Narrow(const wchar_t* pszText, std::array<char, sizeof(SaveOptions::szError)>& narrow) noexcept {
    BOOL bReplaced = FALSE;
    const bool bUtf8 = GetACP() == CP_UTF8;  // holds everything, and may not be asked about replacements
    const int nBytes = WideCharToMultiByte(CP_ACP, 0, pszText, -1, narrow.data(), static_cast<int>(narrow.size()), nullptr,
                                           bUtf8 ? nullptr : &bReplaced);
    return nBytes > 0 && bReplaced == FALSE;
}

}  // namespace

void SetChinese(bool bChinese) noexcept {
    g_nLanguage = bChinese ? LANGUAGE_CHINESE : LANGUAGE_ENGLISH;
}

void TellFault(const SaveResult& result, SaveOptions& options) noexcept {
    const Words words = WordsOf(result);
    std::array<char, sizeof options.szError> narrow{};
    if (!IsChinese() || !Narrow(words.pszChinese, narrow)) {
        narrow = {};
        Narrow(words.pszEnglish, narrow);
    }
    std::ranges::copy(narrow, std::begin(options.szError));
}

}  // namespace width::kestrix
