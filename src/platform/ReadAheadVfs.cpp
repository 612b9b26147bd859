#include "platform/ReadAheadVfs.h"

#include <sqlcipher/sqlite3.h>

#include <algorithm>
#include <cstring>
#include <new>

namespace {

// Our file comes first; the underlying layer's file follows it in the same allocation.
struct File {
    sqlite3_file base;
    sqlite3_file *real;
    bool buffered;                  // a main database opened read-only
    sqlite3_int64 size = -1;        // read when a block is first filled within a transaction
    sqlite3_int64 nextInOrder = -1; // where a read following the last one would start
    int inOrder = 0;                // reads in a row that followed the one before
    sqlite3_int64 blockStart = 0;
    int blockLength = 0;
    char *block = nullptr;
};
static_assert(sizeof(File) % 8 == 0, "the underlying file must stay aligned");

sqlite3_vfs *underlyingVfs = nullptr;
sqlite3_vfs *root() { return underlyingVfs; }
File *mine(sqlite3_file *file) { return reinterpret_cast<File *>(file); }
const sqlite3_io_methods *realMethods(sqlite3_file *file) { return mine(file)->real->pMethods; }

void forget(File *file)
{
    file->size = -1;
    file->blockLength = 0;
    file->nextInOrder = -1;
    file->inOrder = 0;
}

int fileClose(sqlite3_file *file)
{
    File *f = mine(file);
    const int rc = f->real->pMethods ? f->real->pMethods->xClose(f->real) : SQLITE_OK;
    sqlite3_free(f->block);
    f->block = nullptr;
    return rc;
}

// Fills the block holding `offset` from the file; false when that can't be done, and the read
// is then made directly.
bool fill(File *f, sqlite3_int64 offset)
{
    if (!f->block && !(f->block = static_cast<char *>(sqlite3_malloc(ReadAheadVfs::blockSize))))
        return false;
    if (f->size < 0 && f->real->pMethods->xFileSize(f->real, &f->size) != SQLITE_OK) {
        f->size = -1;
        return false;
    }
    const sqlite3_int64 start = offset - offset % ReadAheadVfs::blockSize;
    const int length = int(std::min<sqlite3_int64>(ReadAheadVfs::blockSize, f->size - start));
    f->blockLength = 0;
    if (length <= 0 || f->real->pMethods->xRead(f->real, f->block, length, start) != SQLITE_OK)
        return false;
    f->blockStart = start;
    f->blockLength = length;
    return true;
}

int fileRead(sqlite3_file *file, void *out, int amount, sqlite3_int64 offset)
{
    File *f = mine(file);
    if (f->buffered) {
        const bool following = offset == f->nextInOrder;
        f->inOrder = following ? f->inOrder + 1 : 0;
        f->nextInOrder = offset + amount;
        const auto held = [&] { return offset >= f->blockStart && offset + amount <= f->blockStart + f->blockLength; };
        if ((held() || (f->inOrder >= 2 && amount <= ReadAheadVfs::blockSize && fill(f, offset) && held()))) {
            std::memcpy(out, f->block + (offset - f->blockStart), size_t(amount));
            return SQLITE_OK;
        }
    }
    return f->real->pMethods->xRead(f->real, out, amount, offset);
}

int fileWrite(sqlite3_file *file, const void *data, int amount, sqlite3_int64 offset)
{
    forget(mine(file));
    return realMethods(file)->xWrite(mine(file)->real, data, amount, offset);
}

int fileTruncate(sqlite3_file *file, sqlite3_int64 size)
{
    forget(mine(file));
    return realMethods(file)->xTruncate(mine(file)->real, size);
}

int fileSync(sqlite3_file *file, int flags) { return realMethods(file)->xSync(mine(file)->real, flags); }
int fileSize(sqlite3_file *file, sqlite3_int64 *size) { return realMethods(file)->xFileSize(mine(file)->real, size); }
int fileLock(sqlite3_file *file, int level) { return realMethods(file)->xLock(mine(file)->real, level); }

// Another connection may change the file between transactions: what was read ahead goes with
// the lock, as SQLite's own cache does.
int fileUnlock(sqlite3_file *file, int level)
{
    if (level == SQLITE_LOCK_NONE)
        forget(mine(file));
    return realMethods(file)->xUnlock(mine(file)->real, level);
}

int fileCheckReservedLock(sqlite3_file *file, int *out) { return realMethods(file)->xCheckReservedLock(mine(file)->real, out); }
int fileControl(sqlite3_file *file, int op, void *arg) { return realMethods(file)->xFileControl(mine(file)->real, op, arg); }
int fileSectorSize(sqlite3_file *file) { return realMethods(file)->xSectorSize(mine(file)->real); }
int fileDeviceCharacteristics(sqlite3_file *file) { return realMethods(file)->xDeviceCharacteristics(mine(file)->real); }

int fileShmMap(sqlite3_file *file, int page, int size, int extend, void volatile **out)
{
    // A database in WAL mode keeps its lock from one read transaction to the next, so what was
    // read ahead would outlive a checkpoint: such a file is read as it is asked for.
    mine(file)->buffered = false;
    forget(mine(file));
    return realMethods(file)->iVersion >= 2 ? realMethods(file)->xShmMap(mine(file)->real, page, size, extend, out) : SQLITE_IOERR;
}
int fileShmLock(sqlite3_file *file, int offset, int n, int flags)
{
    return realMethods(file)->iVersion >= 2 ? realMethods(file)->xShmLock(mine(file)->real, offset, n, flags) : SQLITE_IOERR;
}
void fileShmBarrier(sqlite3_file *file)
{
    if (realMethods(file)->iVersion >= 2)
        realMethods(file)->xShmBarrier(mine(file)->real);
}
int fileShmUnmap(sqlite3_file *file, int deleteFlag)
{
    return realMethods(file)->iVersion >= 2 ? realMethods(file)->xShmUnmap(mine(file)->real, deleteFlag) : SQLITE_OK;
}
int fileFetch(sqlite3_file *file, sqlite3_int64 offset, int amount, void **out)
{
    *out = nullptr;
    return realMethods(file)->iVersion >= 3 ? realMethods(file)->xFetch(mine(file)->real, offset, amount, out) : SQLITE_OK;
}
int fileUnfetch(sqlite3_file *file, sqlite3_int64 offset, void *page)
{
    return realMethods(file)->iVersion >= 3 ? realMethods(file)->xUnfetch(mine(file)->real, offset, page) : SQLITE_OK;
}

const sqlite3_io_methods methods = {
    3,         fileClose,       fileRead,     fileWrite,      fileTruncate,       fileSync,
    fileSize,  fileLock,        fileUnlock,   fileCheckReservedLock, fileControl, fileSectorSize,
    fileDeviceCharacteristics,  fileShmMap,   fileShmLock,    fileShmBarrier,     fileShmUnmap,
    fileFetch, fileUnfetch,
};

int vfsOpen(sqlite3_vfs *, const char *name, sqlite3_file *file, int flags, int *outFlags)
{
    File *f = new (file) File{};
    f->real = reinterpret_cast<sqlite3_file *>(f + 1);
    const int rc = root()->xOpen(root(), name, f->real, flags, outFlags);
    if (!f->real->pMethods) {
        file->pMethods = nullptr; // nothing opened: SQLite won't close it
        return rc;
    }
    f->buffered = (flags & SQLITE_OPEN_MAIN_DB) && (flags & SQLITE_OPEN_READONLY);
    file->pMethods = &methods;
    return rc;
}

int vfsDelete(sqlite3_vfs *, const char *name, int syncDir) { return root()->xDelete(root(), name, syncDir); }
int vfsAccess(sqlite3_vfs *, const char *name, int flags, int *out) { return root()->xAccess(root(), name, flags, out); }
int vfsFullPathname(sqlite3_vfs *, const char *name, int size, char *out) { return root()->xFullPathname(root(), name, size, out); }
void *vfsDlOpen(sqlite3_vfs *, const char *name) { return root()->xDlOpen(root(), name); }
void vfsDlError(sqlite3_vfs *, int size, char *out) { root()->xDlError(root(), size, out); }
void (*vfsDlSym(sqlite3_vfs *, void *library, const char *symbol))(void) { return root()->xDlSym(root(), library, symbol); }
void vfsDlClose(sqlite3_vfs *, void *library) { root()->xDlClose(root(), library); }
int vfsRandomness(sqlite3_vfs *, int size, char *out) { return root()->xRandomness(root(), size, out); }
int vfsSleep(sqlite3_vfs *, int microseconds) { return root()->xSleep(root(), microseconds); }
int vfsCurrentTime(sqlite3_vfs *, double *out) { return root()->xCurrentTime(root(), out); }
int vfsGetLastError(sqlite3_vfs *, int size, char *out) { return root()->xGetLastError(root(), size, out); }
int vfsCurrentTimeInt64(sqlite3_vfs *, sqlite3_int64 *out) { return root()->xCurrentTimeInt64(root(), out); }

}

const char *ReadAheadVfs::name()
{
    static const char *const registered = [] {
        static sqlite3_vfs vfs{};
        sqlite3_vfs *underlying = underlyingVfs = sqlite3_vfs_find(nullptr);
        vfs.iVersion = 2;
        vfs.szOsFile = int(sizeof(File)) + underlying->szOsFile;
        vfs.mxPathname = underlying->mxPathname;
        vfs.zName = "velmora-read-ahead";
        vfs.pAppData = underlying;
        vfs.xOpen = vfsOpen;
        vfs.xDelete = vfsDelete;
        vfs.xAccess = vfsAccess;
        vfs.xFullPathname = vfsFullPathname;
        vfs.xDlOpen = vfsDlOpen;
        vfs.xDlError = vfsDlError;
        vfs.xDlSym = vfsDlSym;
        vfs.xDlClose = vfsDlClose;
        vfs.xRandomness = vfsRandomness;
        vfs.xSleep = vfsSleep;
        vfs.xCurrentTime = vfsCurrentTime;
        vfs.xGetLastError = vfsGetLastError;
        vfs.xCurrentTimeInt64 = vfsCurrentTimeInt64;
        sqlite3_vfs_register(&vfs, 0);
        return vfs.zName;
    }();
    return registered;
}
