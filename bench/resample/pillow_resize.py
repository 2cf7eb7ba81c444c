"""Pillow's LANCZOS reduction as a whole program: pillow_resize.py IN OUT WIDTH HEIGHT.
The wall-clock and processor time of the resize alone go to standard error, as mif_bench
prints them ("resize WALL CPU")."""
import sys
import time

from PIL import Image

image = Image.open(sys.argv[1])
image.load()
start, start_cpu = time.perf_counter(), time.process_time()
out = image.resize((int(sys.argv[3]), int(sys.argv[4])), Image.LANCZOS)
print("resize %.4f %.4f" % (time.perf_counter() - start, time.process_time() - start_cpu), file=sys.stderr)
out.save(sys.argv[2])
