// CKWSingleton and CKWSingletonT: process-wide managers, created on first use.
//
// Every singleton registers itself when first created; ReleaseAll, the
// application's last act before it unloads the library, releases them all in
// creation order. A program calls either ReleaseAll or the individual
// ReleaseInstance functions, never both. Not thread-safe: the first
// GetInstance of each singleton belongs to the main thread.
//
//   class CMyManager : public CKWSingletonT<CMyManager> {
//       friend class CKWSingletonT<CMyManager>;
//       CMyManager() = default;
//   };
//   CMyManager::GetInstance()->DoWork();
#pragma once

#include <list>

#include "kwcore/platform/Export.h"

class KWCORE_API CKWSingleton {
public:
    // Destroys this singleton and frees its storage.
    virtual void Release() = 0;
    // Releases every registered singleton, front to back. Neither the list
    // nor any instance pointer is reset.
    static void ReleaseAll();

protected:
    virtual ~CKWSingleton() = default;

    // Appends to the registry list.
    static void Register(CKWSingleton* singleton);
    // Removes the first entry equal to the argument, if any.
    static void Unregister(CKWSingleton* singleton);
    // The registry list, in registration order. It outlives static
    // destruction, so singletons may unregister at any time.
    static std::list<CKWSingleton*>& RegistryList();
};

template <class T, class Base = CKWSingleton>
class CKWSingletonT : public Base {
public:
    static T* GetInstance() {
        if (!m_spInstance) {
            m_spInstance = new T;
            Base::Register(m_spInstance);
        }
        return m_spInstance;
    }

    // Destroys the instance. The pointer is deliberately left as it was (as
    // hosts have always seen it): call this once, at shutdown.
    static void ReleaseInstance() {
        if (m_spInstance) {
            Base::Unregister(m_spInstance);
            delete m_spInstance;
        }
    }

    void Release() override { delete static_cast<T*>(this); }

protected:
    CKWSingletonT() = default;
    ~CKWSingletonT() override = default;

    static T* m_spInstance;
};

template <class T, class Base>
T* CKWSingletonT<T, Base>::m_spInstance = nullptr;
