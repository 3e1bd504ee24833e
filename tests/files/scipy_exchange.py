"""scipy_exchange.py <mat5_exchange> <directory>: files that scipy.io wrote are loaded and saved by the library, and
read by scipy.io again; the values must be the same. Numbers come back as doubles, empty arrays as 0 by 0."""
import os
import subprocess
import sys

try:
    import numpy as np
    import scipy.sparse
    from scipy.io import loadmat, savemat
    from scipy.io.matlab import MatlabObject
except ImportError as reason:
    print("SKIPPED:", reason)
    sys.exit(77)

program, directory = sys.argv[1:]
os.makedirs(directory, exist_ok=True)
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
    if type(got) is not type(wanted) or (wanted.size and got.shape != wanted.shape):
        return differences.append(f"{path}: {type(got)} {got.shape}, not {type(wanted)} {wanted.shape}")
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
for packed in (False, True):
    first, second = (os.path.join(directory, f"{name}{packed:d}.mat") for name in ("scipy", "again"))
    savemat(first, values, do_compression=packed)
    subprocess.run([program, first, second], check=True)
    wanted, got = loadmat(first), loadmat(second, uint16_codec="utf-16-" + sys.byteorder[0] + "e")
    for name in values:
        compared += 1
        if name in got:
            compare(name, got[name], wanted[name])
        else:
            differences.append(f"{name}: missing")
print(f"{compared} variables, {len(differences)} differences", *differences, sep="\n")
sys.exit(1 if differences else 0)
