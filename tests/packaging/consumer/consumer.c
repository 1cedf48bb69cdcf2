/* What a C program needs: the header, a call, the status; and the allocator pair of the core module. */
#include <qorcore.h>
#include <qorsr.h>
#include <stdio.h>
#include <string.h>

int main(void) {
  const float frames[3][2] = {{1.0F, -2.0F}, {2.0F, -4.0F}, {6.0F, -6.0F}};
  const QorLibraryVersion* version = qorsrGetLibVersion();
  float* means = qorMalloc((int32_t)(2 * sizeof(float)));
  QorStatus status;
  int ok;
  if (means == NULL) return 1;
  status = qorsMeanColumn_32f_D2(frames[0], 3, 2, means, 2);
  ok = status == qorStatusOk && means[0] == 3.0F && means[1] == -4.0F && strcmp(version->targetCode, "t7") == 0;
  printf("%s: status %d, means %g %g\n", version->versionText, (int)status, (double)means[0], (double)means[1]);
  qorFree(means);
  return ok ? 0 : 1;
}
