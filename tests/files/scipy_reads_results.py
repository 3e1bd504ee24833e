"""scipy_reads_results.py <sunspots> <longley> <data> <directory>: runs the demonstrations; scipy.io reads what they
saved, and the numbers are those of the data and the certified coefficients."""
import subprocess
import sys
import tempfile

try:
    import numpy as np
    from scipy.io import loadmat
except ImportError as reason:
    print("SKIPPED:", reason)
    sys.exit(77)

sunspots, longley, data = sys.argv[1:]
kept = tempfile.TemporaryDirectory()
directory = kept.name
for program, name in (sunspots, "sunspots"), (longley, "longley"):
    subprocess.run([program, f"{data}/{name}.txt", f"{directory}/{name}"], check=True, stdout=subprocess.DEVNULL)

given = np.loadtxt(f"{data}/sunspots.txt", comments="%")
saved = loadmat(f"{directory}/sunspots.mat")
assert np.array_equal(saved["t"][:, 0], given[:, 0]) and np.array_equal(saved["x"][:, 0], given[:, 1])
cycles = saved["c"].ravel()
assert len(cycles) > 20
for cycle in cycles:
    start, length = int(cycle["start"][0, 0]), int(cycle["length"][0, 0])
    years = given[(given[:, 0] >= start) & (given[:, 0] < start + length)]
    assert cycle["value"][0, 0] == years[:, 1].max(), start

certified = np.array([-3482258.63459582, 15.0618722713733, -0.0358191792925910, -2.02022980381683, -1.03322686717359,
                      -0.0511041056535807, 1829.15146461355])
saved = loadmat(f"{directory}/longley.mat")
assert np.array_equal(saved["d"], np.loadtxt(f"{data}/longley.txt", comments="%"))
assert np.allclose(saved["b"][:, 0], certified, rtol=1e-8, atol=0)
