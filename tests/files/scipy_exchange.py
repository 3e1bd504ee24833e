"""scipy_exchange.py <host>: files that scipy.io wrote, and those that it is tested with, are loaded and saved by the
example host, and read by scipy.io again; the values must be the same. Numbers come back as doubles, empty arrays as 0
by 0."""
import glob
import os
import subprocess
import sys
import tempfile
import warnings

try:
    import numpy as np
    import scipy.io.matlab
    import scipy.sparse
    from scipy.io import loadmat, savemat
    from scipy.io.matlab import MatlabObject
except ImportError as reason:
    print("SKIPPED:", reason)
    sys.exit(77)

(program,) = sys.argv[1:]
kept = tempfile.TemporaryDirectory()
directory = kept.name
random = np.random.default_rng(3)

def cell(*values):
    out = np.empty((1, len(values)), dtype=object)
    for k, value in enumerate(values):
        out[0, k] = value
    return out

values = {"scalar": 2.5, "row": np.arange(6.0).reshape(1, 6), "nan": np.array([[np.nan, np.inf, -0.0]]),
          "cplx": random.standard_normal((3, 4)) + 1j * random.standard_normal((3, 4)),
          "four": random.standard_normal((2, 3, 4, 2)), "empty": np.zeros((0, 3)), "large": random.random((200, 300)),
          "yes": np.array([[True, False, True]]), "single_complex": np.array([[1.5 + 2j]], dtype=np.complex64),
          "a_name_of_many_characters": 1.0,
          "text": "some text", "umlaut": "Gr\u00fc\u00dfe \u20ac", "no_text": "",
          "page": np.array(["abc", "de ", "xyz"]),
          "sparse": scipy.sparse.random(30, 20, 0.2, format="csc", random_state=1),
          "sparse_complex": scipy.sparse.csc_matrix(np.array([[0, 1 + 2j], [3, 0]])),
          "sparse_none": scipy.sparse.csc_matrix((4, 5)),
          "sparse_logical": scipy.sparse.csc_matrix(np.array([[True, False], [False, True]])),
          "cells": cell(1.0, "two", cell(3.0, np.zeros((0, 0)), cell()), np.array([[4, 5]], dtype=np.int16)),
          "struct": {"a": 1.0, "text": "b", "inner": {"c": np.eye(3), "cells": cell("x", 2.0)}},
          "structs": np.array([[(1.0, "p"), (2.0, "q")]], dtype=[("n", object), ("s", object)]),
          "obj": MatlabObject(np.array([[(7.0,)]], dtype=[("field", object)]), "exchanged")}
for kind in ("int8", "uint8", "int16", "uint16", "int32", "uint32", "int64", "uint64", "float32"):
    low, high = (-100, 100) if kind == "float32" else (np.iinfo(kind).min >> 11, np.iinfo(kind).max >> 11)
    values["of_" + kind] = random.integers(low, high + 1, (4, 5)).astype(kind)
values["of_int8"][0, 0] = -128

differences = []

def compare(path, got, wanted):
    if scipy.sparse.issparse(wanted):
        same = scipy.sparse.issparse(got) and np.array_equal(got.toarray(), wanted.toarray())
        return same or differences.append(path)
    if type(got) is not type(wanted) or (np.size(wanted) and np.shape(got) != np.shape(wanted)):
        return differences.append(f"{path}: {type(got)} {np.shape(got)}, not {type(wanted)} {np.shape(wanted)}")
    if wanted is None:  # an element of a structure without fields
        return None
    if wanted.dtype.names:
        if got.dtype.names != wanted.dtype.names or getattr(got, "classname", "") != getattr(wanted, "classname", ""):
            return differences.append(path)
        for name in wanted.dtype.names:
            compare(f"{path}.{name}", got[name], wanted[name])
    elif wanted.dtype == object:
        for k, (x, y) in enumerate(zip(got.flat, wanted.flat)):
            compare(f"{path}{{{k}}}", x, y)
    elif wanted.dtype.kind == "U":
        if got.tolist() != wanted.tolist():
            differences.append(f"{path}: {got}, not {wanted}")
    elif got.size != wanted.size or (wanted.size and not np.array_equal(got, wanted, equal_nan=True)):
        differences.append(path)

compared = 0

def exchange(name, first, level4=False):
    """What the library loads from a file must be what scipy reads there, unless a warning says why not. Files that
    scipy can't read must not bring the library down."""
    global compared
    second = os.path.join(directory, f"{name}.again.mat")
    run = subprocess.run([program], input=f"load {first}\nsave {second} {'-v4' * level4}\n", stdout=subprocess.PIPE,
                         text=True, errors="replace", timeout=60)
    if run.returncode != 0:
        return differences.append(f"{name}: the library ended with {run.returncode}")
    try:
        wanted = loadmat(first)
    except Exception as reason:
        return print(f"{name}: scipy: {reason}\n    library:", run.stdout.strip() or "loaded")
    codec = {} if level4 else {"uint16_codec": "utf-16-" + sys.byteorder[0] + "e"}
    got = loadmat(second, **codec)
    for key, value in wanted.items():
        if key.startswith("__") or f"variable '{key}' of class 'function_handle' can not be loaded" in run.stdout:
            continue
        compared += 1
        if key in got:
            compare(f"{name}: {key}", got[key], value)
        else:
            differences.append(f"{name}: {key} is missing: {run.stdout}")

for packed in (False, True):
    file = os.path.join(directory, f"scipy{packed:d}.mat")
    savemat(file, values, do_compression=packed)
    exchange(f"scipy{packed:d}", file)
matrices = {name: value for name, value in values.items() if name != "umlaut" and (
    scipy.sparse.issparse(value) or np.asarray(value).dtype.kind not in "OV" and np.ndim(value) <= 2)}
file = os.path.join(directory, "scipy4.mat")
savemat(file, matrices, format="4")
exchange("scipy4", file, level4=True)

# The files that scipy itself is tested with. A byte that begins no character stays what it is; fields of the same
# name are one.
warnings.simplefilter("ignore")
unlike = {"broken_utf8: bad_string: ['\\x80 am broken'], not ['\ufffd am broken']",
          "nasty_duplicate_fieldnames: Summary"}
for file in sorted(glob.glob(os.path.join(os.path.dirname(scipy.io.matlab.__file__), "tests", "data", "*.mat"))):
    exchange(os.path.basename(file)[:-4], file)
differences = [text for text in differences if text not in unlike]
print(f"{compared} variables, {len(differences)} differences", *differences, sep="\n")
sys.exit(1 if differences else 0)
