// Tested by: tests/win/kestrix/FullDiskTest.cpp
#include "imageio/FileStream_win.h"

#include <atomic>

namespace width {

namespace {

// The system's interfaces have no virtual destructor: objects delete themselves with their last reference.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
class FileStream final : public IStream {
public:
    explicit FileStream(NewFile& file) : m_file(file) {}
    FileStream(const FileStream&) = delete;
    FileStream& operator=(const FileStream&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** ppObject) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_nReferences; }
    ULONG STDMETHODCALLTYPE Release() override;

    HRESULT STDMETHODCALLTYPE Read(void* pBytes, ULONG nBytes, ULONG* pnRead) override;
    HRESULT STDMETHODCALLTYPE Write(const void* pBytes, ULONG nBytes, ULONG* pnWritten) override;
    HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER move, DWORD nFrom, ULARGE_INTEGER* pPosition) override;
    HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER size) override;
    HRESULT STDMETHODCALLTYPE Commit(DWORD) override { return Result(); }
    HRESULT STDMETHODCALLTYPE Stat(STATSTG* pStatus, DWORD) override;

    // What nobody asks of a file that is being written.
    HRESULT STDMETHODCALLTYPE CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Revert() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Clone(IStream**) override { return E_NOTIMPL; }

private:
    HRESULT Result() const noexcept { return HRESULT_FROM_WIN32(m_file.Error()); }

    NewFile& m_file;
    std::atomic<ULONG> m_nReferences{1};
};
#pragma GCC diagnostic pop

HRESULT FileStream::QueryInterface(REFIID iid, void** ppObject) {
    if (iid != IID_IUnknown && iid != IID_ISequentialStream && iid != IID_IStream) {
        *ppObject = nullptr;
        return E_NOINTERFACE;
    }
    AddRef();
    *ppObject = static_cast<IStream*>(this);
    return S_OK;
}

ULONG FileStream::Release() {
    const ULONG nLeft = --m_nReferences;
    if (nLeft == 0) {
        delete this;
    }
    return nLeft;
}

HRESULT FileStream::Read(void* pBytes, ULONG nBytes, ULONG* pnRead) {
    const auto nRead = static_cast<ULONG>(m_file.Read(pBytes, nBytes));
    if (pnRead != nullptr) {
        *pnRead = nRead;
    }
    return FAILED(Result()) || nRead == nBytes ? Result() : S_FALSE;
}

HRESULT FileStream::Write(const void* pBytes, ULONG nBytes, ULONG* pnWritten) {
    const std::uint64_t nBefore = m_file.Position();
    m_file.Write(pBytes, nBytes);
    if (pnWritten != nullptr) {
        *pnWritten = static_cast<ULONG>(m_file.Position() - nBefore);
    }
    return Result();
}

HRESULT FileStream::Seek(LARGE_INTEGER move, DWORD nFrom, ULARGE_INTEGER* pPosition) {
    const std::uint64_t nStart = nFrom == STREAM_SEEK_SET ? 0 : (nFrom == STREAM_SEEK_CUR ? m_file.Position() : m_file.Size());
    const std::int64_t nTarget = static_cast<std::int64_t>(nStart) + move.QuadPart;
    if (nFrom > STREAM_SEEK_END || nTarget < 0) {
        return STG_E_INVALIDFUNCTION;
    }
    m_file.Seek(static_cast<std::uint64_t>(nTarget));
    if (pPosition != nullptr) {
        pPosition->QuadPart = m_file.Position();
    }
    return S_OK;
}

HRESULT FileStream::SetSize(ULARGE_INTEGER size) {
    m_file.Resize(size.QuadPart);
    return Result();
}

HRESULT FileStream::Stat(STATSTG* pStatus, DWORD) {
    *pStatus = {};
    pStatus->type = STGTY_STREAM;
    pStatus->cbSize.QuadPart = m_file.Size();
    pStatus->grfMode = STGM_READWRITE;
    return S_OK;
}

}  // namespace

Com<IStream> MakeFileStream(NewFile& file) {
    return Com<IStream>(new FileStream(file));
}

}  // namespace width
