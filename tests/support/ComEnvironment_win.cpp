// Keeps the system's components loaded for a whole test program: a test that reads thousands of pictures would otherwise
// load and unload the imaging component for each of them.
#include <gtest/gtest.h>
#include <windows.h>
// after windows.h
#include <objbase.h>

namespace {

class ComEnvironment : public ::testing::Environment {
    void SetUp() override { m_nResult = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
    void TearDown() override {
        if (SUCCEEDED(m_nResult)) {
            CoUninitialize();
        }
    }
    HRESULT m_nResult = E_FAIL;
};

const ::testing::Environment* const g_pEnvironment = ::testing::AddGlobalTestEnvironment(new ComEnvironment);

}  // namespace
